import assert from 'node:assert/strict';
import {mkdtempSync, readFileSync, readdirSync, rmSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {test} from 'node:test';

import {complaints, npm, root} from './compiler.mjs';

const source = join(root, 'types');
const readJson = (file) => JSON.parse(readFileSync(join(source, file), 'utf8'));

test('its version is that of the project', () => {
  assert.equal(readJson('package.json').version, process.env.KESTREL_VERSION);
  assert.equal(readJson('package-lock.json').version, process.env.KESTREL_VERSION);
});

test('a page in a project that has installed it is compiled with it', (t) => {
  const directory = mkdtempSync(join(tmpdir(), 'kestrel-types-'));
  t.after(() => rmSync(directory, {recursive: true}));
  npm(directory, 'pack', source);
  const filename = readdirSync(directory).find((name) => name.endsWith('.tgz'));
  writeFileSync(join(directory, 'package.json'), '{}');
  npm(directory, 'install', `./${filename}`);
  const name = 'kestrel-store-page-types';
  assert.deepEqual(
      readdirSync(join(directory, 'node_modules', name)).sort(),
      ['README.md', 'answers.d.ts', 'functions.d.ts', 'index.d.ts', 'package.json', 'window.d.ts']);

  writeFileSync(join(directory, 'page.ts'), [
    `type Store = import("${name}").Answers["getStoreDetails"];`,
    'external.getStoreDetails((store: Store) => console.log(store.url.length));',
    'external.getStoreDetails();',
    'window.ZYNS?.getLocale();',
  ].join('\n'));
  for (const moduleResolution of ['bundler', 'nodenext']) {
    const module = moduleResolution === 'nodenext' ? 'nodenext' : 'es2022';
    writeFileSync(join(directory, 'tsconfig.json'), JSON.stringify({
      compilerOptions: {
        strict: true, noEmit: true, target: 'es2022', lib: ['es2022', 'dom'], types: [name],
        module, moduleResolution,
      },
      files: ['page.ts'],
    }));
    assert.deepEqual(complaints(directory).map(({file, line}) => [file, line]), [['page.ts', 3]]);
  }
});
