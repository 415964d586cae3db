// Every function, with every kind of argument that it takes.
import type {
  Account,
  AjaxCompletion,
  Answers,
  Question,
  RecoloredImage,
} from "kestrel-store-page-types";

declare module "kestrel-store-page-types" {
  interface Resources {
    title: string;
  }
}

const complete: AjaxCompletion = (id, status, statusText, headers, body) => {
  document.title = [id, status.padStart(3), statusText, headers, body].join();
};
window.zyns_ajax_complete = complete;

window.onHostReady = () => {
  external.siteLoaded();
  external.ready();
  external.ready(1, "two", null, {});
  external.refresh(new Event("click"));
  external.noteRefreshStart();
  external.showAccounts();
  external.logOff(undefined);
  external.openDefaultStore();
  external.sharedUserModeLogon();
  external.offlineErrorTryAgain();
  external.sendAction("category:all");
  external.openUrl(String(new URL("https://store.example/")));
  external.goOnline(null, "online");
  external.settingsMenu(980.5, 12, 1_020, 52);
  external.updateSubPosition("atlas", 0);
  external.updateSubPosition("atlas", "0");
  external.writeTraceMessage("a line", "", undefined, null);
  external.ajax("https://store.example/", "GET", "", "", "1", "zyns_ajax_complete");
  external.ajax("https://store.example/", "GET", "", "", "1", String(complete));
};

// A callback is a name, a source text or a function.
external.getItem("theme", "showTheme");
external.getItem("theme", "(value) => showTheme(value)");
external.getItem("theme", (value) => console.log(value?.length));
external.getItem("theme", () => {});

// The answers of the reference host.
external.getCapabilities("page", ({ host, version }) => console.log(host.length, version.length));
external.getStoreDetails((store) => console.log(store.name.length, store.url.length));
external.getInstalledApps("", ({ applications, subscriptions }) => {
  console.log(applications.map(({ id, name, summary, icon }) => [id, name, summary, icon].join()));
  console.log(subscriptions.map((id) => id.length));
});
external.getAccountsAsync(([first]) => console.log(first?.user.length));
external.subscribe("atlas", (ids) => console.log(ids.at(0)?.length));
external.unsubscribe("atlas", (ids) => console.log(ids.at(0)?.length));
external.launchApp("atlas", ({ started, problem }) => console.log(started || problem.length));
external.launchResource("a.txt", ({ started, problem }) => console.log(started || problem.length));
external.getFileUri("store.css", (uri) => console.log(uri.length));
external.setItem("count", 5, (isKept: boolean) => console.log(isKept));
external.recolorImage("drop.png", 63, 94, 251, "", ({ image, problem }) => {
  console.log(image.length, problem.length);
});
external.errorDialog("Store", null, "No error.", "Close", (button) => console.log(button.length));
external.errorDialog(undefined, "details", "Nothing is wrong.", "Close", "closed");
external.getUserDisplayName((name) => console.log(name.length));

// Another host answers something else.
external.getStoreDetails((store: { title: string }) => console.log(store.title));
external.getStoreDetails<{ title: string }>((store) => console.log(store.title));

// `ZYNS` may be missing.
const title: string | undefined = window.ZYNS?.getResources().title;
const locale: string = window.ZYNS ? window.ZYNS.getLocale() : "en";

// What the document object model says of `external` is still there.
external.AddSearchProvider();

// For pages that make promises of answers.
declare function ask<Name extends keyof Answers>(
  name: Name,
  ...args: Question<Name>
): Promise<Answers[Name]>;
const accounts: Promise<Account[]> = ask("getAccountsAsync");
const image: Promise<RecoloredImage> = ask("recolorImage", "drop.png", 63, 94, 251, "");

console.log(title, locale, accounts, image);
