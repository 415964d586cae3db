// The functions of `external`, `ZYNS`, and what the host looks for in a page.

export * from "./answers";
export * from "./functions";
export * from "./window";
