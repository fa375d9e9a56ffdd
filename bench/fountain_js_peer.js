// The peer of the screenplay benchmark: fountain-js turning a Fountain file
// into HTML, timed inside one node process so that start-up is not counted.
//
//   node fountain_js_peer.js PACKAGE_DIR FILE [ROUNDS]
//
// Prints the mean processor milliseconds of one parse, after a warm-up.
'use strict';
const fs = require('fs');
const { Fountain } = require(process.argv[2]);

const text = fs.readFileSync(process.argv[3], 'utf8');
const rounds = Number(process.argv[4] || 30);
let size = 0;
for (let i = 0; i < 5; i++)
    size += new Fountain().parse(text).html.script.length;
// Processor time of the whole process, its collector's threads included:
// the machine may be busy with other work, which should weigh on neither side.
const start = process.cpuUsage();
for (let i = 0; i < rounds; i++)
    size += new Fountain().parse(text).html.script.length;
const used = process.cpuUsage(start);
const ms = (used.user + used.system) / 1000 / rounds;
if (size === 0)
    throw new Error('fountain-js gave no script');
console.log(ms.toFixed(3));
