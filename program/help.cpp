#include "program/help.h"

#include <memory>
#include <string>
#include <utility>

#include "program/translation.h"

namespace kestrel {
namespace {

class HelpFormatter : public CLI::Formatter {
  public:
    HelpFormatter() {
        for (const char* word :
             {translatable("Usage"), translatable("OPTIONS"), translatable("SUBCOMMAND"),
              translatable("Positionals"), translatable("REQUIRED"), translatable("TEXT")}) {
            label(word, translate(word));
        }
        label("POSITIONALS", translate("Positionals"));  // as CLI11 2.6 has it
    }

    // CLI11 2.6 leaves out the word before the program's name.
    std::string make_usage(const CLI::App* app, std::string name) const override {
        std::string usage = CLI::Formatter::make_usage(app, std::move(name));
        const std::string word = get_label("Usage") + ":";
        if (usage.find(word) == std::string::npos) {
            usage.insert(usage.find_first_not_of('\n'), word + " ");
        }
        return usage;
    }

    // CLI11 has no label for this sentence.
    std::string make_description(const CLI::App* app) const override {
        std::string text = app->get_description() + "\n";
        if (app->get_require_option_min() > 0) {
            text += translate("At least one of the options is required.\n");
        }
        return text;
    }
};

}  // namespace

void describe_help(CLI::App& app) {
    app.formatter(std::make_shared<HelpFormatter>());
    app.option_defaults()->group(translate("Options"));
    describe_help_flag(app);
}

void describe_help_flag(CLI::App& app) {
    app.set_help_flag("-h,--help", translate("Print this help message and exit"));
}

}  // namespace kestrel
