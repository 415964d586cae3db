import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {join} from 'node:path';
import {test} from 'node:test';

import {complaints, root} from './compiler.mjs';

const pages = join(root, 'tests/types/pages');
const found = complaints(pages);
const inWrongPage = ({file}) => file === 'wrong-page.ts';

test('a right page passes', () => {
  assert.deepEqual(found.filter((each) => !inWrongPage(each)), []);
});

test('in a wrong page each marked line fails, and no other', () => {
  const lines = readFileSync(join(pages, 'wrong-page.ts'), 'utf8').split('\n');
  const marked = lines.flatMap((line, index) => line.endsWith('// must fail') ? [index + 1] : []);
  assert.ok(marked.length > 0);
  const failing = new Set(found.filter(inWrongPage).map(({line}) => line));
  assert.deepEqual([...failing], marked);
});
