import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {join} from 'node:path';
import {test} from 'node:test';

import {root, ts} from './compiler.mjs';

const read = (file) => readFileSync(join(root, file), 'utf8');

// [{name, count, parameters, documentation}] of the interface `HostFunctions`.
function declaredFunctions() {
  const file = 'types/functions.d.ts';
  const source = ts.createSourceFile(file, read(file), ts.ScriptTarget.Latest, true);
  const functions = source.statements.find(
      (each) => ts.isInterfaceDeclaration(each) && each.name.text === 'HostFunctions');
  return functions.members.map((member) => ({
    name: member.name.text,
    count: member.parameters.some((each) => each.dotDotDotToken) ? 'any' : member.parameters.length,
    hasOptional: member.parameters.some((each) => each.questionToken),
    parameters: member.parameters.map((each) => each.name.text),
    documentation: member.jsDoc?.[0],
  }));
}

const declared = declaredFunctions();

test('the functions are those of the extension, with its argument counts, in its order', () => {
  const rows = [...read('jsapi/method_table.h').matchAll(/^ *\{"(\w+)", *"\w+", *(\w+),/gm)];
  assert.equal(rows.length, 30);
  assert.deepEqual(
      declared.map(({name, count}) => [name, String(count)]),
      rows.map(([, name, count]) => [name, count]));
});

test('no function has optional arguments', () => {
  assert.deepEqual(declared.filter(({hasOptional}) => hasOptional), []);
});

for (const {name, parameters, documentation} of declared) {
  test(`${name} and its arguments are documented`, () => {
    assert.ok(documentation?.comment);
    const documented = (documentation.tags ?? []).filter(({comment}) => comment);
    assert.deepEqual(documented.map((tag) => tag.name?.text), parameters);
  });
}
