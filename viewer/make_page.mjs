// make_page.mjs NPM FOLDER PAGE
// Gets the packages of the lock file into FOLDER/node_modules, unless these are there already, and
// makes PAGE of what lies in src/: one file that asks for nothing else. That packages cannot be had
// is no failure, and leaves no page.
import { spawnSync } from 'node:child_process';
import { copyFileSync, existsSync, mkdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';

const [npm, folder, page] = process.argv.slice(2);
const here = dirname(fileURLToPath(import.meta.url));
const modules = join(folder, 'node_modules');

function hasPackages() {
    const fetched = join(modules, 'fetched-lock.json');
    const wanted = readFileSync(join(here, 'package-lock.json'));
    if (existsSync(fetched) && readFileSync(fetched).equals(wanted)) return true;
    mkdirSync(folder, { recursive: true });
    for (const name of ['package.json', 'package-lock.json'])
        copyFileSync(join(here, name), join(folder, name));
    const quick = ['--fetch-retries=1', '--fetch-retry-mintimeout=1000', '--fetch-retry-maxtimeout=2000'];
    const run = spawnSync(npm, ['ci', '--ignore-scripts', '--no-audit', '--no-fund', ...quick], {
        cwd: folder, encoding: 'utf8', shell: process.platform === 'win32',
    });
    writeFileSync(join(folder, 'npm.log'), `${run.stdout ?? ''}${run.stderr ?? ''}${run.error ?? ''}`);
    if (run.status === 0) writeFileSync(fetched, wanted);
    return run.status === 0;
}

// Neither kind of text ends the element that it stands in: esbuild sees to that.
async function bundle(esbuild, name) {
    const result = await esbuild.build({
        entryPoints: [join(here, 'src', name)],
        bundle: true, minify: true, write: false, legalComments: 'inline',
        target: 'es2020', nodePaths: [modules], logLevel: 'warning',
    });
    return result.outputFiles[0].text;
}

rmSync(page, { force: true });
if (!hasPackages()) {
    console.log(`The page for takes is not made: npm cannot get its packages (${join(folder, 'npm.log')})`);
    process.exit(0);
}
const esbuild = await import(pathToFileURL(join(modules, 'esbuild', 'lib', 'main.js')));
const [style, script] = [await bundle(esbuild, 'page.css'), await bundle(esbuild, 'page.js')];
const whole = readFileSync(join(here, 'src', 'page.html'), 'utf8')
    .replace('/* page.css */', () => style)
    .replace('/* page.js */', () => script);
mkdirSync(dirname(page), { recursive: true });
writeFileSync(page, whole);
