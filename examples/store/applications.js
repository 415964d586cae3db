// The grid of applications: the store's catalogue and the applications of this computer. The host
// stores the subscriptions in the user's order.
'use strict';

const store = {
  /** @type {string[]} Ids of the subscribed applications, in the user's order. */
  mine: [],
  /** @type {any[]} The applications of this computer, in the format of the catalogue. */
  installed: [],
  category: 'discover',
  query: '',
  isOnline: true,
};

const allApplications = () => [...kCatalogue, ...store.installed];
const isMine = (app) => store.mine.includes(app.id);
const isOverview = () => store.category === 'discover' && !store.query.trim();

function takeApplications({applications, subscriptions}) {
  store.mine = subscriptions;
  store.installed = applications.map((app) => ({
    ...app, publisher: kCategories.computer, category: 'computer', colors: ['#8f9bb8', '#5d6784'],
  }));
}

function applicationsOf(category) {
  if (isOverview()) return kCatalogue;
  const all = allApplications();
  if (category === 'discover') return all;
  if (category === 'mine') return store.mine.flatMap((id) => all.filter((app) => app.id === id));
  return all.filter((app) => app.category === category);
}

function shownApplications() {
  const words = store.query.toLowerCase().split(/\s+/).filter(Boolean);
  return applicationsOf(store.category).filter((app) => {
    const text = `${app.name} ${app.publisher} ${app.summary}`.toLowerCase();
    return words.every((word) => text.includes(word));
  });
}

// --- Actions ---

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
  const {started, problem} = await host.ask('launchApp', app.id);
  toast(started ? `${app.name} is starting` : `${app.name} was not started: ${problem}`);
}

// Moves a subscription to a position in the user's order.
function moveTo(id, position) {
  store.mine = store.mine.filter((each) => each !== id);
  store.mine.splice(position, 0, id);
  host.tell('updateSubPosition', id, position);
  showApplications();
}

// For the keyboard: the pressed button keeps the focus.
function step(app, by, button) {
  const position = store.mine.indexOf(app.id) + by;
  if (position < 0 || position >= store.mine.length) return;
  moveTo(app.id, position);
  element('grid').querySelector(`[data-id="${CSS.escape(app.id)}"] ${button}`).focus();
}

// The order may contain applications that are not shown: the card goes after its shown predecessor.
function drop(card) {
  const {id} = card.dataset;
  const others = store.mine.filter((each) => each !== id);
  moveTo(id, others.indexOf(card.previousElementSibling?.dataset.id) + 1);
}

// --- Display ---

function fillIcon(icon, app) {
  if (app.icon) {
    const image = document.createElement('img');
    image.src = app.icon;
    image.alt = '';
    image.draggable = false;
    icon.classList.add('picture');
    icon.replaceChildren(image);
  } else if (app.glyph) {
    icon.querySelector('path').setAttribute('d', app.glyph);
  } else {
    icon.textContent = app.name.charAt(0).toUpperCase();
  }
}

function applicationCard(app) {
  const card = copyOf('app-card');
  const part = (selector) => card.querySelector(selector);
  const isInstalled = app.category === 'computer';
  card.dataset.id = app.id;
  card.classList.toggle('mine', isMine(app));
  card.classList.toggle('installed', isInstalled);
  card.classList.toggle('sortable', store.category === 'mine');
  card.classList.toggle('featured', isOverview() && app.id === kFeatured);
  card.style.setProperty('--from', app.colors[0]);
  card.style.setProperty('--to', app.colors[1]);
  fillIcon(part('.app-icon'), app);
  part('h3').textContent = app.name;
  part('.publisher').textContent = app.publisher;
  part('.publisher').disabled = isInstalled;
  part('.summary').textContent = app.summary;

  const act = (selector, action) => {
    part(selector).addEventListener('click', () => attempt(() => action(selector)));
  };
  act('.publisher', () => {
    const page = app.publisher.toLowerCase().replaceAll(' ', '-');
    host.tell('openUrl', `https://${page}.example/${app.id}`);
  });
  act('.subscribe', () => subscribe(app));
  act('.unsubscribe', () => unsubscribe(app));
  act('.launch', () => launch(app));
  act('.earlier', (button) => step(app, -1, button));
  act('.later', (button) => step(app, 1, button));
  return card;
}

function showApplications() {
  const shown = shownApplications();
  element('grid').replaceChildren(...shown.map(applicationCard));
  element('nothing').hidden = shown.length > 0;
  element('documents-section').hidden = !isOverview();
  showCategories();
}

function showCategories() {
  element('categories').replaceChildren(...Object.entries(kCategories).map(([category, title]) => {
    const chip = document.createElement('button');
    chip.className = 'chip';
    chip.role = 'tab';
    chip.dataset.category = category;
    chip.textContent = category === 'mine' ? `${title} (${store.mine.length})` : title;
    chip.ariaSelected = String(category === store.category);
    chip.addEventListener('click', () => {
      store.category = category;
      host.tell('sendAction', `category:${category}`);
      showApplications();
      element('main').scrollTop = 0;
    });
    return chip;
  }));
}

async function loadApplications() {
  takeApplications(await host.ask('getInstalledApps', ''));
  if (await host.ask('getItem', 'visited') === null) {
    for (const app of kCatalogue.filter((each) => each.required)) {
      store.mine = await host.ask('subscribe', app.id);
    }
    await host.ask('setItem', 'visited', 'yes');
  }
}

async function refresh() {
  host.tell('noteRefreshStart');
  takeApplications(await host.ask('getInstalledApps', ''));
  showApplications();
  host.tell('refresh');
  toast('Refreshed');
}

function connectApplications() {
  element('search').addEventListener('input', (event) => {
    store.query = event.target.value;
    showApplications();
  });
  onClick('refresh', refresh);
  makeSortable(element('grid'), '.sortable', drop);
}
