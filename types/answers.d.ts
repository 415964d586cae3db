// Answers of the host, and callbacks.

/**
 * Receives an answer: the name of a global function, the source text of a function, or a function,
 * which is sent as its source text. A function sent in this way loses its closure: it can use only
 * its argument and globals. Methods and bound functions cannot be sent.
 *
 * It is called from the main loop, never during the call: once, several times or never.
 */
export type Callback<Answer> = string | ((answer: Answer) => void);

/**
 * The reference host's answers, by function. For another host, declare the type of the callback's
 * parameter, or pass it as the function's type argument.
 */
export interface Answers {
  getCapabilities: Capabilities;
  getStoreDetails: StoreDetails;
  getInstalledApps: InstalledApps;
  getAccountsAsync: Account[];
  /** Ids of the subscribed applications, in the user's order. */
  subscribe: string[];
  /** Ids of the subscribed applications, in the user's order. */
  unsubscribe: string[];
  launchApp: Started;
  /** The file's URI, or `""` if there is no such file. */
  getFileUri: string;
  /** The value, or `null` if none has been set. */
  getItem: string | null;
  /** Whether it was stored. */
  setItem: boolean;
  recolorImage: RecoloredImage;
  /** The button's text, or `""` if the dialog was closed. */
  errorDialog: string;
  getUserDisplayName: string;
  launchResource: Started;
}

/** An answer that may have failed. */
export interface Attempt {
  /** A sentence about the failure; `""` on success. */
  problem: string;
}

/** The result of starting something. */
export interface Started extends Attempt {
  started: boolean;
}

export interface RecoloredImage extends Attempt {
  /** A data URI; `""` if there is a problem. */
  image: string;
}

export interface InstalledApps {
  /** The installed applications, subscribed or not. */
  applications: Application[];
  /** Ids of the subscribed applications, in the user's order. */
  subscriptions: string[];
}

export interface Application {
  id: string;
  name: string;
  summary: string;
  /** A data URI, or `""`. */
  icon: string;
}

/** Properties of the host. */
export interface Capabilities {
  host: string;
  version: string;
  /** How requests are relayed. */
  ajax: string;
  /** How images are recoloured. */
  recolorImage: string;
}

export interface StoreDetails {
  name: string;
  url: string;
}

export interface Account {
  id: string;
  /** The display name. */
  name: string;
  /** The login name. */
  user: string;
}

/**
 * Receives the answer to `external.ajax`: five strings.
 *
 * @param id The request's id, as the page chose it.
 * @param status The status code, in digits; `"0"` without a response.
 * @param statusText The status text, or the reason why there is no response.
 * @param headers The response's headers, a line of `Name: value` each.
 * @param body The response's body.
 */
export type AjaxCompletion = (
  id: string,
  status: string,
  statusText: string,
  headers: string,
  body: string,
) => void;
