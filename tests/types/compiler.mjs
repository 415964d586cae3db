// The compiler and npm, run as the author of a page runs them.
import {execFileSync, spawnSync} from 'node:child_process';
import {createRequire} from 'node:module';
import {join} from 'node:path';
import {fileURLToPath} from 'node:url';

const installed = process.env.KESTREL_COMPILER;

export const root = fileURLToPath(new URL('../..', import.meta.url));
export const ts = createRequire(join(installed, 'package.json'))('typescript');

// What the compiler says to the project in `directory`: [{file, line, text}].
export function complaints(directory) {
  const {status, stdout, stderr, error} = spawnSync(process.execPath,
      [join(installed, 'node_modules/typescript/bin/tsc'), '--pretty', 'false', '--project', '.'],
      {cwd: directory, encoding: 'utf8'});
  const found = [...stdout.matchAll(/^(.+)\((\d+),\d+\): error (.*)$/gm)].map(
      ([, file, line, text]) => ({file, line: Number(line), text}));
  // A complaint about the project as a whole has no place.
  if (error || (status !== 0) !== (found.length > 0)) throw error ?? new Error(stdout + stderr);
  return found;
}

// Runs npm without the network and without the user's home.
export function npm(directory, ...args) {
  return execFileSync('npm', [...args, '--offline', '--no-audit', '--no-fund'], {
    cwd: directory,
    encoding: 'utf8',
    env: {...process.env, HOME: directory, npm_config_cache: join(directory, 'npm-cache')},
  });
}
