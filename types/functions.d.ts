// The functions of `external`.

import type { Answers, Callback } from "./answers";

/**
 * What is sent as text, by script's own conversion. The extension converts any value; what would
 * hardly be meant, such as `[object Object]` or `undefined`, is left out here: say `String(value)`.
 */
export type TextArgument = string | number | bigint | boolean;

/**
 * The functions of `external`. Each returns at once, waits for nothing and throws nothing; an
 * answer comes later, to the callback. The number of arguments must be exactly the declared one:
 * any other sends nothing. A function declared with `...ignored` takes any arguments, sends none.
 *
 * What the arguments mean, and what is answered, is agreed between page and host; what is said of
 * it here holds for the reference host.
 */
export interface HostFunctions {
  /**
   * Asks what the host is and can do.
   * @param page What the page calls itself.
   * @param callback Gets the capabilities.
   */
  getCapabilities<Answer = Answers["getCapabilities"]>(
    page: TextArgument,
    callback: Callback<Answer>,
  ): void;

  /**
   * Tells that the page can be used.
   * @param ignored Not sent.
   */
  ready(...ignored: unknown[]): void;

  /**
   * Asks which store this is.
   * @param callback Gets the store's name and address.
   */
  getStoreDetails<Answer = Answers["getStoreDetails"]>(callback: Callback<Answer>): void;

  /** Goes to the default store. */
  openDefaultStore(): void;

  /**
   * Tells that the page begins to refresh: the same message as `refresh`.
   * @param ignored Not sent.
   */
  noteRefreshStart(...ignored: unknown[]): void;

  /**
   * Asks for the applications of the user's computer, and for the subscriptions.
   * @param notSent Converted to text, but not sent.
   * @param callback Gets both.
   */
  getInstalledApps<Answer = Answers["getInstalledApps"]>(
    notSent: unknown,
    callback: Callback<Answer>,
  ): void;

  /**
   * Shows the client's settings menu at an area of the page, in pixels cut to whole numbers. The
   * host receives left, top, width and height.
   * @param left The area's left edge.
   * @param top The area's upper edge.
   * @param right The area's right edge.
   * @param bottom The area's lower edge.
   */
  settingsMenu(left: number, top: number, right: number, bottom: number): void;

  /**
   * Asks for the user's accounts.
   * @param callback Gets the accounts.
   */
  getAccountsAsync<Answer = Answers["getAccountsAsync"]>(callback: Callback<Answer>): void;

  /**
   * Tells what the user has done.
   * @param action Its name.
   */
  sendAction(action: TextArgument): void;

  /**
   * Tells that the page has refreshed.
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
   * Has the host make a web request. An argument that is no string would be sent empty, functions
   * and numbers included.
   * @param url The address.
   * @param method `GET`, `POST` and so on.
   * @param headers The request's headers, a line of `Name: value` each.
   * @param body The request's body.
   * @param id Comes back with the answer.
   * @param completion Gets the answer: the name or source text of an `AjaxCompletion`. If this text
   *     contains `zyns_ajax_complete` the five strings are handed over as they are.
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
   * @param callback Gets the ids of the subscribed applications, in the user's order.
   */
  subscribe<Answer = Answers["subscribe"]>(id: TextArgument, callback: Callback<Answer>): void;

  /**
   * Ends a subscription.
   * @param id The application's id.
   * @param callback Gets the ids of the subscribed applications, in the user's order.
   */
  unsubscribe<Answer = Answers["unsubscribe"]>(id: TextArgument, callback: Callback<Answer>): void;

  /**
   * Starts an application, if the user agrees.
   * @param id The application's id.
   * @param callback Gets whether it is being started, and why not.
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
   * Asks where a file beside the page is.
   * @param name The file's path, relative to the page.
   * @param callback Gets its URI, or `""`.
   */
  getFileUri<Answer = Answers["getFileUri"]>(name: TextArgument, callback: Callback<Answer>): void;

  /**
   * Asks the client to go online.
   * @param notSent Not sent.
   * @param text Passed on to the host.
   */
  goOnline(notSent: unknown, text: TextArgument): void;

  /**
   * Asks for an item of the host's storage.
   * @param key The item's name.
   * @param callback Gets the value, or `null`.
   */
  getItem<Answer = Answers["getItem"]>(key: TextArgument, callback: Callback<Answer>): void;

  /**
   * Keeps an item in the host's storage.
   * @param key The item's name.
   * @param value Its value, kept as text.
   * @param callback Gets whether it is kept.
   */
  setItem<Answer = Answers["setItem"]>(
    key: TextArgument,
    value: TextArgument,
    callback: Callback<Answer>,
  ): void;

  /**
   * Opens an address outside the page, if the user agrees.
   * @param address The address.
   */
  openUrl(address: TextArgument): void;

  /**
   * Asks for an image in another colour.
   * @param image A data URI, or the path of a file, relative to the page.
   * @param red 0 to 255.
   * @param green 0 to 255.
   * @param blue 0 to 255.
   * @param notSent Not sent.
   * @param callback Gets a data URI, or why there is none.
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
   * @param title The dialog's title; sent empty if it is no string.
   * @param details What may be unfolded; sent empty if it is no string.
   * @param text What has happened.
   * @param button The words on the button.
   * @param callback Gets the button that was pressed, if it was.
   */
  errorDialog<Answer = Answers["errorDialog"]>(
    title: string | null | undefined,
    details: string | null | undefined,
    text: TextArgument,
    button: TextArgument,
    callback: Callback<Answer>,
  ): void;

  /**
   * Asks for the user's name, to be shown.
   * @param callback Gets the name.
   */
  getUserDisplayName<Answer = Answers["getUserDisplayName"]>(callback: Callback<Answer>): void;

  /**
   * Moves a subscription within the user's order.
   * @param id The application's id.
   * @param position Where it is to stand, counted from 0.
   */
  updateSubPosition(id: TextArgument, position: TextArgument): void;

  /** Tells that the page has been loaded. */
  siteLoaded(): void;

  /** Asks to log on in the mode for a shared user. */
  sharedUserModeLogon(): void;

  /** Tells that the user wants to try again after being offline. */
  offlineErrorTryAgain(): void;

  /**
   * Opens a resource, such as a document, with the application for it, if the user agrees.
   * @param name The file's path, relative to the page.
   * @param callback Gets whether it is being opened, and why not.
   */
  launchResource<Answer = Answers["launchResource"]>(
    name: TextArgument,
    callback: Callback<Answer>,
  ): void;
}

/** The arguments of a function that is answered, without the callback. */
export type Question<Name extends keyof Answers> =
  Parameters<HostFunctions[Name]> extends [...infer Sent, callback: unknown] ? Sent : never;
