// Shared helpers: access to elements, and display of failures.
'use strict';

const kToastTime = 3_500;  // milliseconds

/** @type {(id: string) => any} */
const element = (id) => document.getElementById(id);
/** @type {(selector: string) => any[]} */
const elements = (selector) => [...document.querySelectorAll(selector)];
/** @type {(id: string) => any} */
const copyOf = (template) => element(template).content.firstElementChild.cloneNode(true);

const shorten = (text, length) => (text.length > length ? `${text.slice(0, length)}…` : text);

function toast(text) {
  const line = document.createElement('div');
  line.className = 'toast';
  line.textContent = text;
  element('toasts').append(line);
  setTimeout(() => line.remove(), kToastTime);
}

// Runs the action of a control; traces and shows a failure.
async function attempt(action) {
  try {
    await action();
  } catch (error) {
    host.tell('writeTraceMessage', String(error), '', '', '');
    toast(error.message);
  }
}

const onClick = (id, action) => element(id).addEventListener('click', () => attempt(action));

// Replaces the page's texts by the host's translations.
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
