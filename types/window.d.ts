// What a page finds on its window, and what the host looks for there.

import type { AjaxCompletion } from "./answers";
import type { HostFunctions } from "./functions";

/**
 * The localised texts that the host has handed over. What they are is agreed with the host; a page
 * declares its own by adding to this interface:
 *
 *     declare module "kestrel-store-page-types" {
 *       interface Resources { title: string }
 *     }
 */
export interface Resources {}

/** The namespace of a page for which the host has handed over resources. */
export interface Zyns {
  /** The languages to use, as in `Accept-Language`; `en-gb,en;q=0.5` if the client has not said. */
  getLocale(): string;
  /** The texts: the same expression evaluated anew, so each call gives an object of its own. */
  getResources(): Resources;
}

declare global {
  /** In the main frame, once the host's web process has loaded the extension. */
  interface External extends HostFunctions {}

  interface Window {
    /**
     * Missing on a page without resources. They are consumed by the page: a reload finds none
     * unless the host hands them over again. The bare name `ZYNS` throws where it is missing, so it
     * is not declared.
     */
    ZYNS?: Zyns;

    /**
     * Set by the page; the reference host calls it when it is ready. Until then a call of
     * `external` may be lost or end the web process.
     */
    onHostReady?: () => void;

    /** Set by a page that passes the name `zyns_ajax_complete` to `external.ajax`. */
    zyns_ajax_complete?: AjaxCompletion;
  }
}
