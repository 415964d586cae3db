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

function timed(call, count) {
  const start = bench.now();
  for (let i = 0; i < count; ++i) call();
  return (bench.now() - start) / count;
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

// setItem against the floors and peers, which take the same three strings.
function callSubjects(value) {
  bench.prepare(HEADER + 2 + utf8Size(value) + 1 + 3);
  return {
    call: () => external.setItem('k', value, 'cb'),
    empty: () => bench.empty('k', value, 'cb'),
    write: () => bench.write('k', value, 'cb'),
    read: () => bench.readTexts('k', value, 'cb'),
    convert: () => bench.convert('k', value, 'cb'),
    post: () => webkit.messageHandlers.post.postMessage(['k', value, 'cb']),
  };
}

const VALUES = [
  {name: '1B', text: 'v', calls: 1000},
  {name: '16B', text: textOf.ascii(16), calls: 1000},
  {name: '4KB', text: textOf.ascii(4096), calls: 1000},
  {name: '1MB', text: textOf.ascii(1 << 20), calls: 20},
  {name: '4KB_latin1', text: textOf.latin1(4096), calls: 1000},
  {name: '1MB_latin1', text: textOf.latin1(1 << 20), calls: 20},
  {name: '4KB_cyrillic', text: textOf.cyrillic(4096), calls: 1000},
  {name: '1MB_cyrillic', text: textOf.cyrillic(1 << 20), calls: 20},
];

async function callFigures(rounds) {
  const figures = {};
  for (const {name, text, calls} of VALUES) {
    const subjects = callSubjects(text);
    const times = await interleaved(subjects, rounds, call => timed(call, calls));
    for (const subject in times) figures[`page_${subject}_${name}`] = times[subject];
  }
  return figures;
}

// Page call, host's answer, the page's callback; one after the other.
const tripSubjects = value => ({
  link: count => new Promise(done => {
    let left = count;
    const start = bench.now();
    const call = () => external.ajax(value, '', '', '', '', '');
    window.zyns_ajax_complete = text => {
      if (text.length !== value.length) throw new Error('another text came back');
      if (--left > 0) call(); else done((bench.now() - start) / count);
    };
    call();
  }),
  script: async count => {
    const start = bench.now();
    for (let i = 0; i < count; ++i) await webkit.messageHandlers.ask.postMessage(value);
    return (bench.now() - start) / count;
  },
  view: count => new Promise(done => {
    let left = count;
    const start = bench.now();
    const call = () => bench.ask(value, answered);
    const answered = () => {
      if (--left > 0) call(); else done((bench.now() - start) / count);
    };
    call();
  }),
  bare: count => new Promise(done => {
    let left = count;
    const start = bench.now();
    const call = () => bench.trip(value, '', '', '', '', '');
    window.bareComplete = () => {
      if (--left > 0) call(); else done((bench.now() - start) / count);
    };
    call();
  }),
});

async function tripFigures(rounds) {
  const figures = {};
  for (const [name, size, count] of [['16B', 16, 100], ['4KB', 4096, 100], ['1MB', 1 << 20, 4]]) {
    const {bare, ...others} = tripSubjects(textOf.ascii(size));
    const subjects = size > 4096 ? others : {bare, ...others};
    const times = await interleaved(subjects, rounds, trip => trip(count));
    for (const subject in times) figures[`trip_${subject}_${name}`] = times[subject];
  }
  return figures;
}

// An answer's callback evaluated, called and acknowledged, without the way there.
async function deliveryFigures(rounds, count) {
  window.answered = () => {};
  bench.prepare(HEADER);
  const subjects = {deliver: () => timed(() => bench.deliver(count), 1) / count};
  return interleaved(subjects, rounds, deliver => deliver());
}

// The cost of one call as payloads and numbers of calls grow, beside one bare write each.
async function payloadGrowth(rounds, largest) {
  const series = {call: [], write: []};
  for (let size = 10; size <= largest; size *= 10) {
    const calls = Math.max(3, Math.min(1000, 1e7 / size));
    const {call, write} = callSubjects(textOf.ascii(size));
    const times = await interleaved({call, write}, rounds, each => timed(each, calls));
    for (const subject in times) series[subject].push([size, times[subject]]);
  }
  return series;
}

async function countGrowth(most) {
  const series = {call: [], write: []};
  const {call, write} = callSubjects('v');
  for (let count = 1; count <= most; count *= 10) {
    const rounds = Math.max(3, Math.min(99, 1e5 / count)) | 1;
    const times = await interleaved({call, write}, rounds, each => timed(each, count));
    for (const subject in times) series[subject].push([count, times[subject]]);
  }
  return series;
}

// Returns when it started.
function burst(subject, calls) {
  const call = callSubjects('v')[subject];
  const start = bench.now();
  for (let i = 0; i < calls; ++i) call();
  return start;
}

// Values that tell their place, all of one size.
function numbered(calls) {
  for (let i = 0; i < calls; ++i) external.setItem('k', String(100000 + i), 'cb');
}
