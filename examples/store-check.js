// Checks the sample store by clicking through it:
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

// The required applications are subscribed from the start.
await until(() => all('.card.mine').length === 3, 'the required applications are subscribed');
await until(() => find('#store-name').textContent !== '', 'the store shows its name');

// Search.
search('draw');
expect(shownIds() === 'easel', 'a search shows matching applications');
search('nothing has such a name');
expect(!find('#nothing').hidden, 'a search without results shows a message');
search('');

// Subscriptions and their order.
card('atlas').querySelector('.subscribe').click();
await until(() => card('atlas').matches('.mine'), 'a click on "Subscribe" subscribes to Atlas');
openCategory('mine');
expect(shownIds() === 'letters,agenda,notebook,atlas', 'the newest subscription comes last');
card('atlas').querySelector('.earlier').click();
expect(shownIds() === 'letters,agenda,atlas,notebook', 'the button moves it forward');
find('#refresh').click();
await until(hasToast(/^Refreshed$/), 'the store reloads from the host');
expect(shownIds() === 'letters,agenda,atlas,notebook', 'the host has kept the order');
card('atlas').querySelector('.unsubscribe').click();
await until(() => !card('atlas'), 'a click on the cross unsubscribes');

// Failures are shown.
card('letters').querySelector('.launch').click();
await until(hasToast(/^Letters was not started: ./), 'the store shows why nothing was started');
openCategory('discover');
find('.document').click();
await until(hasToast(/^Budget 2027.csv was not opened: ./),
            'the store shows why no document was opened');

// Settings.
find('#open-settings').click();
await until(() => all('.coloured').length === 5, 'the host has coloured the swatches');
find('[name=theme][value=dark]').click();
expect(document.documentElement.dataset.theme === 'dark', 'the dark theme is shown');
find('#diagnostics').click();
await until(() => /^No answer: ./.test(find('#client-answer').textContent),
            'a refused connection is shown');
find('#settings').close();
