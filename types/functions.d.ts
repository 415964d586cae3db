// The functions of `external`.

import type { Answers, Callback } from "./answers";

/**
 * An argument that is converted to text. The extension converts any value; types whose text is
 * rarely intended, such as `[object Object]` or `undefined`, are excluded: use `String(value)`.
 */
export type TextArgument = string | number | bigint | boolean;

/**
 * The functions of `external`. Each returns at once and does not throw; the callback receives the
 * answer later. The number of arguments must be exactly the declared one; otherwise nothing is
 * sent. A function declared with `...ignored` accepts any arguments and sends none.
 *
 * Page and host agree on the meaning of arguments and answers; the comments describe the reference
 * host.
 */
export interface HostFunctions {
  /**
   * Requests the host's capabilities.
   * @param page The page's name.
   * @param callback Receives the capabilities.
   */
  getCapabilities<Answer = Answers["getCapabilities"]>(
    page: TextArgument,
    callback: Callback<Answer>,
  ): void;

  /**
   * Reports that the page is ready for use.
   * @param ignored Not sent.
   */
  ready(...ignored: unknown[]): void;

  /**
   * Requests information about the store.
   * @param callback Receives the store's name and address.
   */
  getStoreDetails<Answer = Answers["getStoreDetails"]>(callback: Callback<Answer>): void;

  /** Opens the default store. */
  openDefaultStore(): void;

  /**
   * Reports that the page starts refreshing: the same message as `refresh`.
   * @param ignored Not sent.
   */
  noteRefreshStart(...ignored: unknown[]): void;

  /**
   * Requests the installed applications and the subscriptions.
   * @param notSent Converted to text, but not sent.
   * @param callback Receives both.
   */
  getInstalledApps<Answer = Answers["getInstalledApps"]>(
    notSent: unknown,
    callback: Callback<Answer>,
  ): void;

  /**
   * Shows the client's settings menu at an area of the page, in pixels truncated to integers. The
   * host receives left, top, width and height.
   * @param left The area's left edge.
   * @param top The area's upper edge.
   * @param right The area's right edge.
   * @param bottom The area's lower edge.
   */
  settingsMenu(left: number, top: number, right: number, bottom: number): void;

  /**
   * Requests the user's accounts.
   * @param callback Receives the accounts.
   */
  getAccountsAsync<Answer = Answers["getAccountsAsync"]>(callback: Callback<Answer>): void;

  /**
   * Reports a user action.
   * @param action The action's name.
   */
  sendAction(action: TextArgument): void;

  /**
   * Reports that the page has refreshed.
   * @param ignored Not sent.
   */
  refresh(...ignored: unknown[]): void;

  /**
   * Shows the client's accounts.
   * @param ignored Not sent.
   */
  showAccounts(...ignored: unknown[]): void;

  /**
   * Logs the user off.
   * @param ignored Not sent.
   */
  logOff(...ignored: unknown[]): void;

  /**
   * Sends a web request through the host. Arguments that are not strings, such as functions and
   * numbers, would be sent empty.
   * @param url The address.
   * @param method `GET`, `POST` and so on.
   * @param headers The request's headers, a line of `Name: value` each.
   * @param body The request's body.
   * @param id Returned in the answer.
   * @param completion Receives the answer: the name or source text of an `AjaxCompletion`. If this
   *     text contains `zyns_ajax_complete`, the five strings are passed unchanged.
   */
  ajax(
    url: string,
    method: string,
    headers: string,
    body: string,
    id: string,
    completion: string,
  ): void;

  /**
   * Subscribes to an application.
   * @param id The application's id.
   * @param callback Receives the ids of the subscribed applications, in the user's order.
   */
  subscribe<Answer = Answers["subscribe"]>(id: TextArgument, callback: Callback<Answer>): void;

  /**
   * Ends a subscription.
   * @param id The application's id.
   * @param callback Receives the ids of the subscribed applications, in the user's order.
   */
  unsubscribe<Answer = Answers["unsubscribe"]>(id: TextArgument, callback: Callback<Answer>): void;

  /**
   * Starts an application, after the user's confirmation.
   * @param id The application's id.
   * @param callback Receives whether it is being started, or the reason why not.
   */
  launchApp<Answer = Answers["launchApp"]>(id: TextArgument, callback: Callback<Answer>): void;

  /**
   * Writes a line to the host's trace.
   * @param text The line.
   * @param notSent1 Not sent.
   * @param notSent2 Not sent.
   * @param notSent3 Not sent.
   */
  writeTraceMessage(
    text: TextArgument,
    notSent1: unknown,
    notSent2: unknown,
    notSent3: unknown,
  ): void;

  /**
   * Requests the URI of a file next to the page.
   * @param name The file's path, relative to the page.
   * @param callback Receives the URI, or `""`.
   */
  getFileUri<Answer = Answers["getFileUri"]>(name: TextArgument, callback: Callback<Answer>): void;

  /**
   * Requests the client to go online.
   * @param notSent Not sent.
   * @param text Passed on to the host.
   */
  goOnline(notSent: unknown, text: TextArgument): void;

  /**
   * Requests an item of the host's storage.
   * @param key The item's name.
   * @param callback Receives the value, or `null`.
   */
  getItem<Answer = Answers["getItem"]>(key: TextArgument, callback: Callback<Answer>): void;

  /**
   * Stores an item in the host's storage.
   * @param key The item's name.
   * @param value Its value, stored as text.
   * @param callback Receives whether it was stored.
   */
  setItem<Answer = Answers["setItem"]>(
    key: TextArgument,
    value: TextArgument,
    callback: Callback<Answer>,
  ): void;

  /**
   * Opens an address outside the page, after the user's confirmation.
   * @param address The address.
   */
  openUrl(address: TextArgument): void;

  /**
   * Requests an image in another colour.
   * @param image A data URI, or the path of a file, relative to the page.
   * @param red 0 to 255.
   * @param green 0 to 255.
   * @param blue 0 to 255.
   * @param notSent Not sent.
   * @param callback Receives a data URI, or the reason why there is none.
   */
  recolorImage<Answer = Answers["recolorImage"]>(
    image: TextArgument,
    red: number,
    green: number,
    blue: number,
    notSent: unknown,
    callback: Callback<Answer>,
  ): void;

  /**
   * Shows an error to the user.
   * @param title The dialog's title; sent empty unless a string.
   * @param details Details that the user can unfold; sent empty unless a string.
   * @param text The error message.
   * @param button The button's text.
   * @param callback Receives the text of the button, or `""`.
   */
  errorDialog<Answer = Answers["errorDialog"]>(
    title: string | null | undefined,
    details: string | null | undefined,
    text: TextArgument,
    button: TextArgument,
    callback: Callback<Answer>,
  ): void;

  /**
   * Requests the user's display name.
   * @param callback Receives the name.
   */
  getUserDisplayName<Answer = Answers["getUserDisplayName"]>(callback: Callback<Answer>): void;

  /**
   * Moves a subscription within the user's order.
   * @param id The application's id.
   * @param position The new position; the first is 0.
   */
  updateSubPosition(id: TextArgument, position: TextArgument): void;

  /** Reports that the page has been loaded. */
  siteLoaded(): void;

  /** Requests a logon in shared user mode. */
  sharedUserModeLogon(): void;

  /** Reports that the user wants to retry after being offline. */
  offlineErrorTryAgain(): void;

  /**
   * Opens a resource, such as a document, with its application, after the user's confirmation.
   * @param name The file's path, relative to the page.
   * @param callback Receives whether it is being opened, or the reason why not.
   */
  launchResource<Answer = Answers["launchResource"]>(
    name: TextArgument,
    callback: Callback<Answer>,
  ): void;
}

/** The arguments of a function that is answered, without the callback. */
export type Question<Name extends keyof Answers> =
  Parameters<HostFunctions[Name]> extends [...infer Sent, callback: unknown] ? Sent : never;
