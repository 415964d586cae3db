// Start-up, documents, the user's account and the connection.
'use strict';

// --- Documents, files in the page's directory ---

async function openDocument(file) {
  const {started, problem} = await host.ask('launchResource', `documents/${file.name}`);
  toast(started ? `${file.name} is opening` : `${file.name} was not opened: ${problem}`);
}

function showDocuments() {
  element('documents').replaceChildren(...kDocuments.map((file) => {
    const button = copyOf('document');
    button.style.setProperty('--from', file.color);
    button.querySelector('path').setAttribute('d', file.glyph);
    button.querySelector('strong').textContent = file.name;
    button.querySelector('.quiet').textContent = file.kind;
    button.addEventListener('click', () => attempt(() => openDocument(file)));
    return button;
  }));
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
  for (const button of elements('[data-tell]')) {
    button.addEventListener('click', () => {
      host.tell(button.dataset.tell);
      element('account-menu').hidePopover();
    });
  }
  onClick('online', () => (store.isOnline ? setOnline(false) : goOnline()));
  onClick('go-online', goOnline);
  onClick('try-again', () => host.tell('offlineErrorTryAgain'));
}

// --- Start ---

async function start() {
  applyResources();
  connectControls();
  connectApplications();
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
    await loadApplications();
    await showAccount();
  });
  showApplications();
  host.tell('ready');
}

start();
