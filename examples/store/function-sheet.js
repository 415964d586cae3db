// The sheet of all functions: a button, the arguments and the answer of each.
'use strict';

const kSampleApp = 'atlas';
const kRefusedAddress = 'http://127.0.0.1:9/';  // refuses connections: an answer without a network

/** @typedef {{name: string, isAnswered?: boolean, call: () => unknown}} Row */
/**
 * @type {<Name extends keyof HostFunctions>(
 *     name: Name, ...args: Parameters<HostFunctions[Name]>) => Row}
 */
const tellRow = (name, ...args) => ({name, call: () => host.tell(name, ...args)});
/** @type {<Name extends keyof Answers>(name: Name, ...args: Question<Name>) => Row} */
const askRow = (name, ...args) => ({name, isAnswered: true, call: () => host.ask(name, ...args)});

// In the order in which "Call all" calls them.
const kFunctions = [
  tellRow('siteLoaded'),
  tellRow('ready'),
  askRow('getCapabilities', 'sample store'),
  askRow('getStoreDetails'),
  askRow('getUserDisplayName'),
  askRow('getAccountsAsync'),
  tellRow('showAccounts'),
  tellRow('sharedUserModeLogon'),
  tellRow('noteRefreshStart'),
  askRow('getInstalledApps', ''),
  tellRow('refresh'),
  askRow('subscribe', kSampleApp),
  tellRow('updateSubPosition', kSampleApp, 0),
  askRow('launchApp', kSampleApp),
  askRow('launchResource', 'documents/Budget 2027.csv'),
  askRow('unsubscribe', kSampleApp),
  askRow('setItem', 'greeting', 'Grüß Gott – "hello"'),
  // This callback is passed as source text, the others as names.
  {name: 'getItem', isAnswered: true, call: () => host.askBySource('getItem', 'greeting')},
  askRow('getFileUri', 'index.html'),
  askRow('recolorImage', 'drop.png', 63, 94, 251, ''),
  {name: 'ajax', isAnswered: true, call: () => host.relay({url: kRefusedAddress})},
  tellRow('openUrl', 'https://store.example/help'),
  tellRow('settingsMenu', 980, 12, 1_020, 52),
  askRow('errorDialog', 'Sample store', null, 'Nothing is wrong.', 'Close'),
  tellRow('sendAction', 'category:discover'),
  tellRow('goOnline', '', 'online'),
  tellRow('offlineErrorTryAgain'),
  tellRow('writeTraceMessage', 'A line for the trace', '', '', ''),
  tellRow('logOff'),
  // The last one: it may unload this page.
  tellRow('openDefaultStore'),
];

const shownArgument = (value) => shorten(JSON.stringify(value) ?? 'undefined', 34);

function showCall(row, {args, answer, failure}) {
  const output = row.querySelector('output');
  if (args) {
    row.querySelector('.call').textContent =
        `${row.dataset.name}(${args.map(shownArgument).join(', ')})`;
    row.className = row.dataset.answered ? 'waiting' : 'sent';
    output.textContent = row.dataset.answered ? 'waiting for the answer' : 'sent';
  } else {
    row.className = failure ? 'failed' : 'answered';
    output.textContent = failure ?? shorten(JSON.stringify(answer), 160);
  }
}

function buildSheet() {
  const rows = new Map();
  for (const row of kFunctions) {
    const line = copyOf('function-row');
    line.dataset.name = row.name;
    if (row.isAnswered) line.dataset.answered = 'yes';
    line.querySelector('.call').textContent = `${row.name}()`;
    line.querySelector('button').addEventListener('click', () => attempt(row.call));
    rows.set(row.name, line);
  }
  element('functions').replaceChildren(...rows.values());
  host.observe((event) => showCall(rows.get(event.name), event));
}

function showSheet(isShown) {
  element('sheet').hidden = !isShown;
  element('toggle-sheet').ariaPressed = String(isShown);
}

// Calls every function once, in sequence, and reports to the host which callbacks ran.
async function callEveryFunction() {
  showSheet(true);
  const calledBack = [];
  for (const {name, isAnswered, call} of kFunctions) {
    try {
      await call();
      if (isAnswered) calledBack.push(name);
    } catch (error) {
      toast(error.message);
    }
  }
  const answered = kFunctions.filter((row) => row.isAnswered).length;
  element('sheet-summary').textContent =
      `${kFunctions.length} functions called, ${calledBack.length} of ${answered} called back.`;
  external.writeTraceMessage(JSON.stringify({calledBack}), '', '', '');
}

buildSheet();
onClick('toggle-sheet', () => showSheet(element('sheet').hidden));
onClick('call-all', callEveryFunction);
