// The functions of `external`, `ZYNS`, and the names that the host looks up in a page.

export * from "./answers";
export * from "./functions";
export * from "./window";
