// Prints a line for each thing that npm's gltf-validator has to say of glTF files, remarks
// included. Usage: validate.mjs NODE_MODULES FILE...
import {readFileSync} from 'node:fs';
import {createRequire} from 'node:module';

const [modules, ...files] = process.argv.slice(2);
const validator = createRequire(`${modules}/`)('gltf-validator');
for (const file of files) {
    const report = await validator.validateBytes(new Uint8Array(readFileSync(file)), {
        ignoredIssues: ['NODE_EMPTY'],
    });
    for (const issue of report.issues.messages)
        console.log(`${file}: ${issue.code} ${issue.pointer ?? issue.offset}: ${issue.message}`);
}
