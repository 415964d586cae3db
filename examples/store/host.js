// The page's way to the host. A function of `external` returns nothing; where the host answers, it
// calls a function of the page later. Here such a call becomes a promise.
'use strict';

/** @typedef {import('kestrel-store-page-types').Answers} Answers */
/** @typedef {import('kestrel-store-page-types').HostFunctions} HostFunctions */
/**
 * @template {keyof Answers} Name
 * @typedef {import('kestrel-store-page-types').Question<Name>} Question
 */
/**
 * @typedef {<Name extends keyof HostFunctions>(
 *     name: Name, ...args: Parameters<HostFunctions[Name]>) => void} Tell
 */
/**
 * @typedef {<Name extends keyof Answers>(
 *     name: Name, ...args: Question<Name>) => Promise<Answers[Name]>} Ask
 */

const host = (() => {
  // How long an answer may take, in milliseconds: what waits for the user or for a web server takes
  // longer.
  const kPatience = 10_000;
  const kPatienceFor =
      {launchApp: 600_000, launchResource: 600_000, errorDialog: 600_000, ajax: 60_000};

  const pending = new Map();  // number of a question -> what to do with its answer
  let questions = 0;
  const observers = [];

  // The host's first word. Before it the link need not be up, and a call would be lost.
  /** @type {Promise<void>} */
  const ready = new Promise((resolve) => { window.onHostReady = resolve; });

  const observe = (observer) => { observers.push(observer); };
  const report = (event) => { for (const observer of observers) observer(event); };

  // Calls a function that is not answered.
  function tell(name, ...args) {
    external[name](...args);
    report({name, args});
  }

  function settle(number, value) {
    const question = pending.get(number);
    if (!question) return;
    pending.delete(number);
    clearTimeout(question.timer);
    report({name: question.name, answer: value});
    question.resolve(value);
  }

  // Calls a function that is answered, with the arguments that `makeArguments` gives for the
  // question's number, and gives what the host answers.
  function question(name, makeArguments) {
    const number = ++questions;
    return new Promise((resolve, reject) => {
      const timer = setTimeout(() => {
        pending.delete(number);
        report({name, failure: 'no answer'});
        reject(new Error(`${name}: no answer`));
      }, kPatienceFor[name] ?? kPatience);
      pending.set(number, {name, resolve, timer});
      tell(name, ...makeArguments(number));
    });
  }

  // A host finds a callback by its name: every question has one here, made when it is looked up.
  /** @type {any} */ (window).hostAnswers = new Proxy({}, {
    get: (_, property) => {
      const number = Number(/^take(\d+)$/.exec(String(property))?.[1]);
      return (value) => settle(number, value);
    },
  });

  // The last argument is the callback, by its name.
  const ask = (name, ...args) =>
      question(name, (number) => [...args, `hostAnswers.take${number}`]);

  // The same by a function's text, in which the number travels.
  const askBySource = (name, ...args) =>
      question(name, (number) => [...args, `(value) => hostAnswers.take${number}(value)`]);

  // The answer to a relayed request comes to a function whose name holds "zyns_ajax_complete".
  window.zyns_ajax_complete = (id, status, statusText, headers, body) => {
    settle(Number(id), {status: Number(status), statusText, headers, body});
  };
  const relay = ({url, method = 'GET', headers = '', body = ''}) =>
      question('ajax', (number) =>
        [url, method, headers, body, String(number), 'zyns_ajax_complete']);

  return {
    isPresent: typeof window.external?.siteLoaded === 'function',
    ready, observe, relay,
    tell: /** @type {Tell} */ (tell),
    ask: /** @type {Ask} */ (ask),
    askBySource: /** @type {Ask} */ (askBySource),
  };
})();
