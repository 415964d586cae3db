// What comes back from the host, and where it goes.

/**
 * Where an answer goes: the name of a global function, the source text of a function, or a
 * function, which is sent as its source text. A function sent so loses its closure: it can use its
 * argument and what is global, nothing else; a method or a bound function cannot be sent.
 *
 * It is called from the main loop, never inside the call that asked: once, several times or never.
 */
export type Callback<Answer> = string | ((answer: Answer) => void);

/**
 * What the reference host answers, by the function that asks. Another host may answer something
 * else: give its type as the type of the callback's parameter, or as the function's type argument.
 */
export interface Answers {
  getCapabilities: Capabilities;
  getStoreDetails: StoreDetails;
  /** Ids of the subscribed applications, in the user's order. */
  getInstalledApps: string[];
  getAccountsAsync: Account[];
  /** Ids of the subscribed applications, in the user's order. */
  subscribe: string[];
  /** Ids of the subscribed applications, in the user's order. */
  unsubscribe: string[];
  /** Whether it is being started. */
  launchApp: boolean;
  /** The file's URI, or `""` if there is no such file. */
  getFileUri: string;
  /** The value, or `null` if none has been set. */
  getItem: string | null;
  /** Whether it is kept. */
  setItem: boolean;
  /** A data URI. */
  recolorImage: string;
  /** The button that was pressed. */
  errorDialog: string;
  getUserDisplayName: string;
  /** Whether it is being started. */
  launchResource: boolean;
}

/** What the host is and can do. */
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
  /** To be shown. */
  name: string;
  /** The login name. */
  user: string;
}

/**
 * Takes the answer to `external.ajax`: five strings.
 *
 * @param id The request's id, as the page chose it.
 * @param status The status code, in digits.
 * @param statusText The words that go with the status.
 * @param headers The answer's headers.
 * @param body The answer's body.
 */
export type AjaxCompletion = (
  id: string,
  status: string,
  statusText: string,
  headers: string,
  body: string,
) => void;
