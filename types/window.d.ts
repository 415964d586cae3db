// Properties of `window` that the extension adds, and those that the host looks up.

import type { AjaxCompletion } from "./answers";
import type { HostFunctions } from "./functions";

/**
 * The localised texts handed over by the host. Page and host agree on them; a page declares its own
 * by extending this interface:
 *
 *     declare module "kestrel-store-page-types" {
 *       interface Resources { title: string }
 *     }
 */
export interface Resources {}

/** The namespace of a page for which the host has handed over resources. */
export interface Zyns {
  /** The preferred languages, as in `Accept-Language`; by default `en-gb,en;q=0.5`. */
  getLocale(): string;
  /** The texts. Each call evaluates the expression again and returns a new object. */
  getResources(): Resources;
}

declare global {
  /** In the main frame, if the web process has loaded the extension. */
  interface External extends HostFunctions {}

  interface Window {
    /**
     * Missing on a page without resources. The page consumes them: after a reload they are missing
     * unless the host hands them over again. The bare name `ZYNS` throws where it is missing and is
     * therefore not declared.
     */
    ZYNS?: Zyns;

    /**
     * Defined by the page; the reference host calls it when it is ready. Before that, a call of
     * `external` may be lost or end the web process.
     */
    onHostReady?: () => void;

    /** Defined by a page that passes the name `zyns_ajax_complete` to `external.ajax`. */
    zyns_ajax_complete?: AjaxCompletion;
  }
}
