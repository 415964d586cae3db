// Wraps the functions of `external`. They return nothing; the host answers by calling a function of
// the page. Here such a call returns a promise.
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
  // Timeouts for answers, in milliseconds; longer where the user or a web server is involved.
  const kTimeout = 10_000;
  const kTimeoutFor =
      {launchApp: 600_000, launchResource: 600_000, errorDialog: 600_000, ajax: 60_000};

  const pending = new Map();  // number of a question -> its promise
  let questions = 0;
  const observers = [];

  // Resolved when the host is ready. Before, the link may not be up and calls would be lost.
  /** @type {Promise<void>} */
  const ready = new Promise((resolve) => { window.onHostReady = resolve; });

  const observe = (observer) => { observers.push(observer); };
  const report = (event) => { for (const observer of observers) observer(event); };

  // Calls a function without an answer.
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

  // Calls a function with the arguments that `makeArguments` returns for the question's number.
  // Resolves to the host's answer.
  function question(name, makeArguments) {
    const number = ++questions;
    return new Promise((resolve, reject) => {
      const timer = setTimeout(() => {
        pending.delete(number);
        report({name, failure: 'no answer'});
        reject(new Error(`${name}: no answer`));
      }, kTimeoutFor[name] ?? kTimeout);
      pending.set(number, {name, resolve, timer});
      tell(name, ...makeArguments(number));
    });
  }

  // Callbacks by name: the callback of a question is created when it is looked up.
  /** @type {any} */ (window).hostAnswers = new Proxy({}, {
    get: (_, property) => {
      const number = Number(/^take(\d+)$/.exec(String(property))?.[1]);
      return (value) => settle(number, value);
    },
  });

  // Passes the callback as the last argument, by name.
  const ask = (name, ...args) =>
      question(name, (number) => [...args, `hostAnswers.take${number}`]);

  // Passes the callback as source text.
  const askBySource = (name, ...args) =>
      question(name, (number) => [...args, `(value) => hostAnswers.take${number}(value)`]);

  // Relayed requests are answered to a function whose name contains "zyns_ajax_complete".
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
