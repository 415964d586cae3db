// Each marked line must fail, and no other.
import type { Answers, Question } from "kestrel-store-page-types";

// A number of arguments that the extension refuses.
external.siteLoaded(1); // must fail
external.openDefaultStore("store"); // must fail
external.getItem("theme"); // must fail
external.getItem("theme", "show", "more"); // must fail
external.setItem("theme", "dark"); // must fail
external.getInstalledApps("show"); // must fail
external.writeTraceMessage("a line"); // must fail
external.goOnline("online"); // must fail
external.recolorImage("drop.png", 63, 94, 251, "show"); // must fail
external.ajax("https://store.example/", "GET", "", "", "zyns_ajax_complete"); // must fail
external.settingsMenu(1, 2, 3); // must fail

// What no function takes, or only another one.
external.getItem("theme", 5); // must fail
external.getItem("theme", null); // must fail
external.getItem("theme", (value: string | null, more: string) => more); // must fail
external.getItem({ key: "theme" }, "show"); // must fail
external.getItem(undefined, "show"); // must fail
external.settingsMenu("1", 2, 3, 4); // must fail
external.errorDialog(5, null, "text", "Close", "closed"); // must fail

// These would be sent empty.
external.ajax("https://store.example/", "GET", "", "", 1, "zyns_ajax_complete"); // must fail
external.ajax("https://store.example/", "GET", "", "", "1", () => {}); // must fail

// Nothing is returned, or can be waited for.
const item: string | null = external.getItem("theme", "show"); // must fail
external.getUserDisplayName("show").then(console.log); // must fail

// Answers are what the reference host gives.
external.getItem("theme", (value) => value.length); // must fail
external.getStoreDetails((store) => store.title); // must fail
external.getInstalledApps("", (ids) => ids.length); // must fail
external.launchApp("atlas", ({ isStarted }) => isStarted); // must fail
external.recolorImage("drop.png", 63, 94, 251, "", (image) => image.length); // must fail
const answer: Answers["logOff"] = undefined; // must fail
const question: Question<"getItem"> = ["theme", "show"]; // must fail

// Names are those of the extension.
external.logoff(); // must fail
external.openURL("https://store.example/"); // must fail
external.getAccounts("show"); // must fail

// `ZYNS` may be missing, and its bare name would throw then.
window.ZYNS.getLocale(); // must fail
ZYNS.getLocale(); // must fail
const color: unknown = window.ZYNS?.getResources().color; // must fail
window.ZYNS?.getLocale("en"); // must fail

// Names that the host looks for.
window.onHostReady = (host: string) => console.log(host); // must fail
window.zyns_ajax_complete = (id: number) => console.log(id); // must fail

console.log(item, answer, question, color);
