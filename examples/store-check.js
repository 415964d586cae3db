// What must hold of the sample store, by clicking through it:
// kestrel-workbench --headless --page examples/store/index.html --script examples/store-check.js
const {expect} = workbench;
// A busy machine takes longer than the five seconds that are the default.
const until = (condition, text) => workbench.until(condition, text, 20000);
const find = (selector) => document.querySelector(selector);
const all = (selector) => [...document.querySelectorAll(selector)];
const card = (id) => find(`.card[data-id="${CSS.escape(id)}"]`);
const shownIds = () => all('.card').map((each) => each.dataset.id).join();
const openCategory = (name) => find(`[data-category="${name}"]`).click();
const hasToast = (pattern) => () => all('.toast').some((each) => pattern.test(each.textContent));

function search(words) {
  find('#search').value = words;
  find('#search').dispatchEvent(new Event('input'));
}

// Everybody starts with the same applications.
await until(() => all('.card.mine').length === 3, 'the required applications are mine');
await until(() => find('#store-name').textContent !== '', 'the store shows its name');

// Search.
search('draw');
expect(shownIds() === 'easel', 'a search shows what answers to it');
search('nothing has such a name');
expect(!find('#nothing').hidden, 'a search without result says so');
search('');

// Subscriptions and their order.
card('atlas').querySelector('.subscribe').click();
await until(() => card('atlas').matches('.mine'), 'a click on "Subscribe" makes Atlas mine');
openCategory('mine');
expect(shownIds() === 'letters,agenda,notebook,atlas', 'the newest of mine comes last');
card('atlas').querySelector('.earlier').click();
expect(shownIds() === 'letters,agenda,atlas,notebook', 'a button moves it towards the front');
find('#refresh').click();
await until(hasToast(/^Refreshed$/), 'the store asks the host again');
expect(shownIds() === 'letters,agenda,atlas,notebook', 'the host has kept the order');
card('atlas').querySelector('.unsubscribe').click();
await until(() => !card('atlas'), 'a click on the cross ends the subscription');

// What cannot be done is said.
card('letters').querySelector('.launch').click();
await until(hasToast(/^Letters was not started: ./), 'the store tells why nothing has started');
openCategory('discover');
find('.document').click();
await until(hasToast(/^Budget 2027.csv was not opened: ./), 'it tells why no document is opened');

// Settings.
find('#open-settings').click();
await until(() => all('.coloured').length === 5, 'the host has coloured the swatches');
find('[name=theme][value=dark]').click();
expect(document.documentElement.dataset.theme === 'dark', 'the dark theme is shown');
find('#diagnostics').click();
await until(() => /^No answer: ./.test(find('#client-answer').textContent),
            'a server that refuses is told of');
find('#settings').close();
