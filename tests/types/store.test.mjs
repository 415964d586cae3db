import assert from 'node:assert/strict';
import {readdirSync} from 'node:fs';
import {join} from 'node:path';
import {test} from 'node:test';

import {complaints, root} from './compiler.mjs';

test('the sample store passes', () => {
  // The compiler does not mind if there is nothing to check.
  assert.ok(readdirSync(join(root, 'examples/store')).some((file) => file.endsWith('.js')));
  assert.deepEqual(complaints(join(root, 'tests/types/store')), []);
});
