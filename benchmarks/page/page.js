// The page's part of the benchmarks. `bench` is the second extension's; `external` comes with
// bench.load(). All times are nanoseconds.
'use strict';

const HEADER = 16;

const textOf = {
  ascii: bytes => 'x'.repeat(bytes),
  latin1: bytes => 'naïve café, '.repeat(bytes / 14 + 1).slice(0, Math.floor(bytes / 14 * 12)),
  cyrillic: bytes => 'Привет, мир! '.repeat(bytes / 22 + 1).slice(0, Math.floor(bytes / 22 * 13)),
};

const utf8Size = text => new TextEncoder().encode(text).length;

// All that the page has posted so far has come when this has.
const settled = () => webkit.messageHandlers.ask.postMessage('');

const median = times => times.sort((a, b) => a - b)[times.length >> 1];

function timed(call, values) {
  const start = bench.now();
  for (let i = 0; i < values.length; ++i) call(values[i]);
  return (bench.now() - start) / values.length;
}

// Each round measures every subject once; the first warms up and does not count.
async function interleaved(subjects, rounds, measure) {
  const names = Object.keys(subjects);
  const times = Object.fromEntries(names.map(name => [name, []]));
  for (let round = 0; round <= rounds; ++round) {
    for (const name of names) {
      const time = await measure(subjects[name]);
      await settled();
      if (round > 0) times[name].push(time);
    }
  }
  return Object.fromEntries(names.map(name => [name, median(times[name])]));
}

const CALLS = {
  nothing: value => bench.now('k', value, 'cb'),
  call: value => external.setItem('k', value, 'cb'),
  texts: value => bench.readTexts('k', value, 'cb'),
  convert: value => bench.convert('k', value, 'cb'),
  post: value => webkit.messageHandlers.post.postMessage(['k', value, 'cb']),
};

// Nanoseconds per call of each subject, by its name; all values have one size.
function timesOfCalls(subjects, values, rounds) {
  bench.prepare(HEADER + 2 + utf8Size(values[0]) + 1 + 3);
  const calls = Object.fromEntries(subjects.map(name => [name, CALLS[name]]));
  return interleaved(calls, rounds, call => timed(call, values));
}

const same = text => count => Array(count).fill(text);

// Distinct values of 16 bytes.
let made = 10000000;
const distinct = count => Array.from({length: count}, () => `another ${++made}`);

const VALUES = [
  {name: '1B', values: same('v'), calls: 1000, subjects: ['call', 'texts']},
  {name: '16B', values: distinct, calls: 1000, subjects: ['call', 'post']},
  {name: '4KB', values: same(textOf.ascii(4096)), calls: 1000, subjects: ['call', 'post']},
  {name: '1MB', values: same(textOf.ascii(1 << 20)), calls: 20,
   subjects: ['call', 'texts', 'post']},
  {name: '1MB_latin1', values: same(textOf.latin1(1 << 20)), calls: 20,
   subjects: ['call', 'convert']},
  {name: '1MB_cyrillic', values: same(textOf.cyrillic(1 << 20)), calls: 20,
   subjects: ['call', 'convert']},
];

async function callFigures(rounds) {
  const figures = {};
  for (const {name, values, calls, subjects} of VALUES) {
    const times = await timesOfCalls(subjects, values(calls), rounds);
    for (const subject in times) figures[`page_${subject}_${name}`] = times[subject];
  }
  return figures;
}

// Private memory that the extension, its connection and its first calls add.
function memoryAdded(call) {
  const CALL_COUNT = 100;
  const repeat = each => { for (let i = 0; i < CALL_COUNT; ++i) each('v'); };
  repeat(CALLS.nothing);  // memory that any script needs
  const before = bench.privateMemory();
  bench.load();
  repeat(call);
  return bench.privateMemory() - before;
}

// Page call, host's answer, the page's callback; one after the other.
const tripSubjects = {
  link: values => new Promise(done => {
    let at = 0;
    const start = bench.now();
    const call = () => external.ajax(values[at], '', '', '', '', '');
    window.zyns_ajax_complete = text => {
      if (text.length !== values[at].length) throw new Error('another text came back');
      if (++at < values.length) call(); else done((bench.now() - start) / values.length);
    };
    call();
  }),
  script: async values => {
    const start = bench.now();
    for (const value of values) await webkit.messageHandlers.ask.postMessage(value);
    return (bench.now() - start) / values.length;
  },
  view: values => new Promise(done => {
    let at = 0;
    const start = bench.now();
    const call = () => bench.ask(values[at], answered);
    const answered = () => {
      if (++at < values.length) call(); else done((bench.now() - start) / values.length);
    };
    call();
  }),
};

const TRIPS = [
  {name: '16B', values: distinct, count: 100},
  {name: '4KB', values: same(textOf.ascii(4096)), count: 100},
  {name: '1MB', values: same(textOf.ascii(1 << 20)), count: 4},
];

async function tripFigures(rounds) {
  const figures = {};
  for (const {name, values, count} of TRIPS) {
    const times = await interleaved(tripSubjects, rounds, trip => trip(values(count)));
    for (const subject in times) figures[`trip_${subject}_${name}`] = times[subject];
  }
  return figures;
}

// Time per call and of its floor as values grow.
async function payloadGrowth(rounds, largest) {
  const series = {call: [], texts: []};
  for (let size = 10; size <= largest; size *= 10) {
    const calls = Math.max(3, Math.min(1000, 1e7 / size));
    const values = same(textOf.ascii(size))(calls);
    const times = await timesOfCalls(['call', 'texts'], values, rounds);
    for (const subject in times) series[subject].push([size, times[subject]]);
  }
  return series;
}

// The same as the number of calls in a row grows.
async function countGrowth(most) {
  const series = {call: [], texts: []};
  for (let count = 1; count <= most; count *= 10) {
    const rounds = Math.max(3, Math.min(99, 1e5 / count)) | 1;
    const times = await timesOfCalls(['call', 'texts'], same('v')(count), rounds);
    for (const subject in times) series[subject].push([count, times[subject]]);
  }
  return series;
}

// Returns the time of the start.
function burst(subject, count) {
  const call = CALLS[subject];
  const start = bench.now();
  for (let i = 0; i < count; ++i) call('v');
  return start;
}

// Called by the host's answers.
let answers = 0;
function answered() {
  ++answers;
}

// Values that tell their place, all of one size.
function numbered(calls) {
  for (let i = 0; i < calls; ++i) external.setItem('k', String(100000 + i), 'cb');
}

function spin(milliseconds) {
  for (const end = performance.now() + milliseconds; performance.now() < end;);
}

let isBusy = false;

function again(schedule, milliseconds) {
  schedule(() => {
    spin(milliseconds);
    if (isBusy) again(schedule, milliseconds);
  });
}

const frame = turn => requestAnimationFrame(turn);
const timer = turn => setTimeout(turn, 0);

function message(turn) {
  window.onmessage = turn;
  window.postMessage('', '*');
}

function channel(turn) {
  const {port1, port2} = new MessageChannel();
  port1.onmessage = turn;
  port2.postMessage('');
}

const LOADS = {
  frames8: () => { again(frame, 8); again(timer, 8); },
  frames16: () => again(frame, 16),
  frames30: () => { again(frame, 30); again(timer, 1); },
  timers: () => { again(timer, 8); again(timer, 8); },
  messages: () => again(message, 5),
  channel: () => again(channel, 5),
};

// Keeps the main thread busy until calmDown.
function keepBusy(load) {
  isBusy = true;
  LOADS[load]();
}

function calmDown() {
  isBusy = false;
}
