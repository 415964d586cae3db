// The store: applications in a grid, the user's own in the user's order, and what belongs to them.
// The host keeps the subscriptions and the items; the page shows them and passes on what is done.
'use strict';

/** @type {(id: string) => any} */
const element = (id) => document.getElementById(id);
/** @type {(selector: string) => any[]} */
const elements = (selector) => [...document.querySelectorAll(selector)];

const store = {
  /** @type {string[]} Ids of the subscribed applications, in the user's order. */
  mine: [],
  category: 'all',
  query: '',
  isOnline: true,
};

function toast(text) {
  const line = document.createElement('div');
  line.className = 'toast';
  line.textContent = text;
  element('toasts').append(line);
  setTimeout(() => line.remove(), 3_500);
}

// Runs what a control does; a failure is traced and shown, not lost.
async function attempt(action) {
  try {
    await action();
  } catch (error) {
    host.tell('writeTraceMessage', String(error), '', '', '');
    toast(error.message);
  }
}

const onClick = (id, action) => element(id).addEventListener('click', () => attempt(action));

// --- Localised texts ---

function applyResources() {
  const zyns = window.ZYNS;
  if (!zyns) return;  // consumed by an earlier load, or the host has none
  const texts = /** @type {Record<string, string>} */ (zyns.getResources());
  for (const target of elements('[data-text]')) {
    target.textContent = texts[target.dataset.text] ?? target.textContent;
  }
  for (const target of elements('[data-placeholder]')) {
    target.placeholder = texts[target.dataset.placeholder] ?? target.placeholder;
  }
  document.documentElement.lang = zyns.getLocale().split(/[,;]/)[0];
}

// --- Applications ---

const application = (id) => kCatalogue.find((app) => app.id === id);
const isMine = (app) => store.mine.includes(app.id);

function shownApplications() {
  const words = store.query.toLowerCase().split(/\s+/).filter(Boolean);
  const candidates = store.category === 'mine'
      ? store.mine.map(application).filter((app) => app !== undefined)
      : kCatalogue.filter((app) => store.category === 'all' || app.category === store.category);
  return candidates.filter((app) => {
    const text = `${app.name} ${app.publisher} ${app.summary}`.toLowerCase();
    return words.every((word) => text.includes(word));
  });
}

async function subscribe(app) {
  store.mine = await host.ask('subscribe', app.id);
  toast(`${app.name} is yours now`);
  showApplications();
}

async function unsubscribe(app) {
  store.mine = await host.ask('unsubscribe', app.id);
  toast(`${app.name} removed`);
  showApplications();
}

async function launch(app) {
  if (!store.isOnline) throw new Error('You are offline');
  const isStarted = await host.ask('launchApp', app.id);
  toast(isStarted ? `${app.name} is starting` : `${app.name} could not be started`);
}

function move(app, step) {
  const from = store.mine.indexOf(app.id);
  const to = from + step;
  if (to < 0 || to >= store.mine.length) return;
  store.mine.splice(from, 1);
  store.mine.splice(to, 0, app.id);
  host.tell('updateSubPosition', app.id, to);
  showApplications();
}

function applicationCard(app) {
  const card = element('app-card').content.firstElementChild.cloneNode(true);
  const part = (selector) => card.querySelector(selector);
  card.dataset.id = app.id;
  card.classList.toggle('mine', isMine(app));
  card.classList.toggle('sortable', store.category === 'mine');
  card.style.setProperty('--from', app.colors[0]);
  card.style.setProperty('--to', app.colors[1]);
  part('path').setAttribute('d', app.glyph);
  part('h3').textContent = app.name;
  part('.publisher').textContent = app.publisher;
  part('.summary').textContent = app.summary;

  const act = (selector, action) => {
    part(selector).addEventListener('click', () => attempt(action));
  };
  act('.publisher', () => {
    const page = app.publisher.toLowerCase().replaceAll(' ', '-');
    host.tell('openUrl', `https://${page}.example/${app.id}`);
  });
  act('.subscribe', () => subscribe(app));
  act('.unsubscribe', () => unsubscribe(app));
  act('.launch', () => launch(app));
  act('.earlier', () => move(app, -1));
  act('.later', () => move(app, 1));
  return card;
}

function showApplications() {
  const shown = shownApplications();
  element('grid').replaceChildren(...shown.map(applicationCard));
  element('nothing').hidden = shown.length > 0;
  showFilters();
}

function showFilters() {
  element('filters').replaceChildren(...Object.entries(kCategories).map(([category, title]) => {
    const chip = document.createElement('button');
    chip.className = 'chip';
    chip.role = 'tab';
    chip.textContent = category === 'mine' ? `${title} (${store.mine.length})` : title;
    chip.ariaSelected = String(category === store.category);
    chip.addEventListener('click', () => {
      store.category = category;
      host.tell('sendAction', `category:${category}`);
      showApplications();
    });
    return chip;
  }));
}

function showDocuments() {
  element('documents').replaceChildren(...kDocuments.map((file) => {
    const button = document.createElement('button');
    const name = document.createElement('strong');
    const opener = document.createElement('span');
    name.textContent = file.name;
    opener.textContent = `opens with ${file.application}`;
    opener.className = 'quiet';
    button.append(name, opener);
    button.addEventListener('click', () => attempt(async () => {
      const isStarted = await host.ask('launchResource', file.id);
      toast(isStarted ? `${file.name} is opening` : `${file.name} could not be opened`);
    }));
    return button;
  }));
}

async function loadSubscriptions() {
  store.mine = await host.ask('getInstalledApps', '');
  if (await host.ask('getItem', 'visited') === null) {
    for (const app of kCatalogue.filter((each) => each.required)) {
      store.mine = await host.ask('subscribe', app.id);
    }
    await host.ask('setItem', 'visited', 'yes');
  }
}

async function refresh() {
  host.tell('noteRefreshStart');
  store.mine = await host.ask('getInstalledApps', '');
  showApplications();
  host.tell('refresh');
  toast('Refreshed');
}

// --- Account and connection ---

async function showAccount() {
  const name = await host.ask('getUserDisplayName');
  element('account').textContent = name.charAt(0).toUpperCase() || '?';
  element('account-name').textContent = name;
  const accounts = await host.ask('getAccountsAsync');
  element('accounts').replaceChildren(...accounts.map((account) => {
    const line = document.createElement('li');
    line.textContent = `${account.user} (${account.id})`;
    return line;
  }));
  const details = await host.ask('getStoreDetails');
  element('store-name').textContent = details.name;
}

function setOnline(isOnline) {
  store.isOnline = isOnline;
  element('online').textContent = isOnline ? 'Online' : 'Offline';
  element('online').classList.toggle('off', !isOnline);
  element('offline').hidden = isOnline;
}

function goOnline() {
  host.tell('goOnline', '', 'online');
  setOnline(true);
}

function connectControls() {
  element('search').addEventListener('input', (event) => {
    store.query = event.target.value;
    showApplications();
  });
  for (const button of elements('[data-tell]')) {
    button.addEventListener('click', () => {
      host.tell(button.dataset.tell);
      element('account-menu').hidePopover();
    });
  }
  onClick('refresh', refresh);
  onClick('online', () => (store.isOnline ? setOnline(false) : goOnline()));
  onClick('go-online', goOnline);
  onClick('try-again', () => host.tell('offlineErrorTryAgain'));
}

// --- Start ---

async function start() {
  connectControls();
  connectSettings();
  showApplications();
  showDocuments();
  if (!host.isPresent) {
    toast('There is no host: this page shows itself only.');
    return;
  }
  await host.ready;
  host.tell('siteLoaded');
  await attempt(async () => {
    await loadSettings();
    await loadSubscriptions();
    await showAccount();
  });
  showApplications();
  host.tell('ready');
}

applyResources();
start();
