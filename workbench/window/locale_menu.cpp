#include "workbench/window/locale_menu.h"

#include <algorithm>
#include <utility>

#include "program/translation.h"

namespace kestrel {
namespace {

constexpr const char* kLocaleKey = "kestrel-locale";
constexpr const char* kUsersOwn = translatable("User default");

const std::string& locale_of(GtkWidget* choice) {
    return *static_cast<const std::string*>(g_object_get_data(G_OBJECT(choice), kLocaleKey));
}

// Includes the current locale even if its catalogue has another name.
std::vector<std::string> all_of(const LocaleMenu::Choices& choices) {
    std::vector<std::string> locales = {""};
    locales.insert(locales.end(), choices.locales.begin(), choices.locales.end());
    if (std::ranges::find(locales, choices.current) == locales.end()) {
        locales.push_back(choices.current);
    }
    return locales;
}

}  // namespace

LocaleMenu::LocaleMenu(const Choices& choices, OnChosen on_chosen)
    : choices_({all_of(choices), choices.current}),
      on_chosen_(std::move(on_chosen)),
      button_(take_reference(gtk_menu_button_new())) {
    const bool has_catalogues = !choices.locales.empty();
    gtk_container_add(
        GTK_CONTAINER(button_.get()),
        gtk_image_new_from_icon_name("preferences-desktop-locale-symbolic", GTK_ICON_SIZE_BUTTON));
    gtk_widget_set_name(button_.get(), "locales");
    gtk_widget_set_tooltip_text(
        button_.get(),
        has_catalogues ? translate("Language of the client's catalogue (restarts the workbench)")
                       : translate("There is no catalogue in the install root"));
    GtkWidget* popover = gtk_popover_new(button_.get());
    GtkWidget* choices_box = make_choices();
    gtk_container_add(GTK_CONTAINER(popover), choices_box);
    gtk_widget_show_all(choices_box);
    gtk_menu_button_set_popover(GTK_MENU_BUTTON(button_.get()), popover);
    gtk_widget_set_sensitive(button_.get(), has_catalogues ? TRUE : FALSE);
    gtk_widget_show_all(button_.get());
}

LocaleMenu::~LocaleMenu() { gtk_widget_destroy(button_.get()); }

GtkWidget* LocaleMenu::make_choices() {
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 4);
    g_object_set(box, "margin", 12, nullptr);
    GtkRadioButton* group = nullptr;
    for (std::string& locale : choices_.locales) {
        GtkWidget* choice = gtk_radio_button_new_with_label_from_widget(
            group, locale.empty() ? translate(kUsersOwn) : locale.c_str());
        group = GTK_RADIO_BUTTON(choice);
        gtk_widget_set_name(choice, ("locale " + locale).c_str());
        g_object_set_data(G_OBJECT(choice), kLocaleKey, &locale);
        if (locale == choices_.current) {
            gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(choice), TRUE);
        }
        gtk_box_pack_start(GTK_BOX(box), choice, FALSE, FALSE, 0);
    }
    for (GSList* each = gtk_radio_button_get_group(group); each != nullptr; each = each->next) {
        g_signal_connect(
            each->data, "toggled", G_CALLBACK(+[](GtkWidget* toggled, LocaleMenu* self) {
                if (gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(toggled)) != FALSE) {
                    self->on_chosen_(locale_of(toggled));
                }
            }),
            this);
    }
    return box;
}

}  // namespace kestrel
