// The settings dialog. The host stores the settings as items.
'use strict';

const kAccents = ['#3f5efb', '#0f9a68', '#d1297f', '#e05a1c', '#7a3fe0'];
const kSwatchImage = 'drop.png';
const kShownBody = 400;  // characters of the answer to diagnostics

const components = (color) => /** @type {[number, number, number]} */ (
    [1, 3, 5].map((start) => Number.parseInt(color.slice(start, start + 2), 16)));

function setTheme(theme) {
  document.documentElement.dataset.theme = theme;
  elements(`#themes [value=${theme}]`)[0].checked = true;
}

function setAccent(color) {
  document.documentElement.style.setProperty('--accent', color);
  for (const swatch of elements('#accents button')) {
    swatch.ariaPressed = String(swatch.dataset.color === color);
  }
}

// The swatches are images coloured by the host. Plain colours are shown until they arrive, or if
// colouring fails.
async function makeSwatches() {
  for (const swatch of elements('#accents button')) {
    const {image, problem} =
        await host.ask('recolorImage', kSwatchImage, ...components(swatch.dataset.color), '');
    if (!image) throw new Error(`No colours: ${problem}`);
    swatch.classList.add('coloured');
    swatch.style.backgroundImage = `url("${image}")`;
  }
}

async function loadSettings() {
  const saved = async (key) => host.ask('getItem', key);
  setTheme(await saved('theme') ?? 'system');
  setAccent(await saved('accent') ?? kAccents[0]);
  element('note').value = await saved('note') ?? '';
}

const showAnswer = (text) => { element('client-answer').textContent = text; };

async function sendDiagnostics() {
  showAnswer('Sending…');
  const capabilities = await host.ask('getCapabilities', 'sample store');
  const {status, statusText, body} = await host.relay({
    url: element('diagnostics-address').value,
    method: 'POST',
    headers: 'Content-Type: application/json',
    body: JSON.stringify({capabilities, userAgent: navigator.userAgent}),
  });
  showAnswer(status === 0
      ? `No answer: ${statusText}`
      : `${status} ${statusText}: ${shorten(body, kShownBody)}`);
}

function connectSettings() {
  element('accents').append(...kAccents.map((color) => {
    const swatch = document.createElement('button');
    swatch.type = 'button';
    swatch.dataset.color = color;
    swatch.style.setProperty('--swatch', color);
    swatch.title = color;
    swatch.addEventListener('click', () => attempt(async () => {
      setAccent(color);
      await host.ask('setItem', 'accent', color);
    }));
    return swatch;
  }));
  element('themes').addEventListener('change', (event) => attempt(async () => {
    setTheme(event.target.value);
    await host.ask('setItem', 'theme', event.target.value);
  }));
  element('note').addEventListener('change', (event) => attempt(async () => {
    await host.ask('setItem', 'note', event.target.value);
  }));
  onClick('open-settings', async () => {
    element('settings').showModal();
    await makeSwatches();
  });
  onClick('client-settings', () => {
    const area = element('client-settings').getBoundingClientRect();
    host.tell('settingsMenu', area.left, area.top, area.right, area.bottom);
  });
  onClick('diagnostics', sendDiagnostics);
  onClick('style-file', async () => showAnswer(await host.ask('getFileUri', 'store.css')));
  onClick('show-error', async () => {
    const pressed = await host.ask('errorDialog',
        'Sample store', null, 'This is what an error looks like.', 'Close');
    showAnswer(pressed ? `You pressed "${pressed}".` : 'You closed the dialog without its button.');
  });
}
