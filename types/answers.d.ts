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
  /** Whether it is kept. */
  setItem: boolean;
  recolorImage: RecoloredImage;
  /** The words on the button, or `""` if the dialog was closed without it. */
  errorDialog: string;
  getUserDisplayName: string;
  launchResource: Started;
}

/** An answer that may have failed. */
export interface Attempt {
  /** What went wrong, as a sentence; `""` if nothing did. */
  problem: string;
}

/** What has become of the wish to start something. */
export interface Started extends Attempt {
  started: boolean;
}

export interface RecoloredImage extends Attempt {
  /** A data URI; `""` if there is a problem. */
  image: string;
}

export interface InstalledApps {
  /** The applications of the user's computer, subscribed or not. */
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
 * @param status The status code, in digits; `"0"` if no answer came.
 * @param statusText The words that go with the status, or why no answer came.
 * @param headers The answer's headers, a line of `Name: value` each.
 * @param body The answer's body.
 */
export type AjaxCompletion = (
  id: string,
  status: string,
  statusText: string,
  headers: string,
  body: string,
) => void;
