// Evaluates the math workload with mathjs and holds its values and speed against ours.
// node compare-mathjs.mjs MATHJS_DIR LINES_FILE OUR_VALUES_FILE OUR_FULL_NS OUR_RAW_NS
import { createRequire } from 'node:module';
import { readFileSync } from 'node:fs';
import path from 'node:path';

const [mathjsDir, linesFile, oursFile, oursFullNs, oursRawNs] = process.argv.slice(2);
const require = createRequire(path.join(path.resolve(mathjsDir), 'package.json'));
const math = require('mathjs');

const readLines = (file) => readFileSync(file, 'utf8').replace(/\n$/, '').split('\n');
const lines = readLines(linesFile);
const ours = readLines(oursFile);
if (ours.length !== lines.length) throw new Error(`${ours.length} values for ${lines.length} lines`);

// A value mathjs gives for a line, or null when it refuses it or gives no plain number.
function theirs(line) {
  try {
    const value = math.evaluate(line);
    return typeof value === 'number' ? value : null;
  } catch {
    return null;
  }
}

function pass(someLines) {
  let accepted = 0;
  for (const line of someLines) if (theirs(line) !== null) accepted++;
  return accepted;
}

const kWarmUp = 12;
const kTimed = 15;
function medianNsPerLine(someLines) {
  for (let i = 0; i < kWarmUp; i++) pass(someLines);
  const times = [];
  for (let i = 0; i < kTimed; i++) {
    const start = process.hrtime.bigint();
    pass(someLines);
    times.push(Number(process.hrtime.bigint() - start) / someLines.length);
  }
  times.sort((a, b) => a - b);
  return times[Math.floor(kTimed / 2)];
}
const mathjsNs = medianNsPerLine(lines);
// Refusing a line costs mathjs an exception; its time on the lines it takes, for reference.
const mathjsAcceptedNs = medianNsPerLine(lines.filter((line) => theirs(line) !== null));

// Why two engines that both give a number disagree: our math lines follow their own rules.
function reason(line) {
  if (/\blog\(/.test(line)) return 'log is base 10 on a math line, natural in mathjs';
  if (/%/.test(line)) return 'percent rules differ';
  if (/,/.test(line)) return 'a comma groups digits on a math line';
  return 'unexplained';
}

function parseOurs(text) {
  if (text === 'n/a') return null;
  if (text === 'inf') return Infinity;
  if (text === '-inf') return -Infinity;
  return Number(text);
}

function agree(a, b) {
  if (Number.isNaN(a) && Number.isNaN(b)) return true;
  if (!Number.isFinite(a) || !Number.isFinite(b)) return a === b;
  return Math.abs(a - b) <= 1e-9 * Math.max(Math.abs(a), Math.abs(b), Number.MIN_VALUE);
}

let both = 0, onlyOurs = 0, onlyTheirs = 0, neither = 0;
const disagreements = [];
const refusedByUs = new Map();
const refusedByThem = new Map();
const count = (map, key, line) => {
  const entry = map.get(key) ?? { n: 0, example: line };
  entry.n++;
  map.set(key, entry);
};
lines.forEach((line, i) => {
  const a = parseOurs(ours[i]);
  const b = theirs(line);
  if (a !== null && b !== null) {
    both++;
    if (!agree(a, b)) disagreements.push({ line, ours: ours[i], theirs: b, reason: reason(line) });
  } else if (a !== null) {
    onlyOurs++;
    let why = 'other';
    if (/\$|€/.test(line)) why = 'currency symbol';
    else if (/ x /.test(line)) why = '"x" for times';
    else if (/% of /.test(line)) why = '"% of"';
    else if (/[²³]/.test(line)) why = 'superscript power';
    count(refusedByThem, why, line);
  } else if (b !== null) {
    onlyTheirs++;
    let why = 'other';
    if (/\bround\(/.test(line)) why = 'round() is no function of our engine';
    else if (/\/ 0(\.0+)?(\D|$)/.test(line)) why = 'division by zero is an error here, Infinity in mathjs';
    count(refusedByUs, why, line);
  } else {
    neither++;
  }
});

const byReason = new Map();
for (const d of disagreements) count(byReason, d.reason, d.line);

console.log(`lines: ${lines.length}; both give a number: ${both}; only ours: ${onlyOurs}; only mathjs: ${onlyTheirs}; neither: ${neither}`);
for (const [why, { n, example }] of refusedByThem) console.log(`  mathjs refuses ${n} (${why}), e.g. ${example}`);
for (const [why, { n, example }] of refusedByUs) console.log(`  we refuse ${n} (${why}), e.g. ${example}`);
console.log(`disagreements beyond 1e-9 relative among lines both accept: ${disagreements.length}`);
for (const [why, { n }] of byReason) console.log(`  ${n}: ${why}`);
for (const d of disagreements.slice(0, 12)) console.log(`    ${d.line}  =>  ours ${d.ours}, mathjs ${d.theirs}  [${d.reason}]`);

const full = Number(oursFullNs);
const raw = Number(oursRawNs);
console.log(`mathjs ${math.version}: ${(mathjsNs / 1000).toFixed(3)} µs/line (median of ${kTimed} passes after ${kWarmUp} warm-up passes; ${(mathjsAcceptedNs / 1000).toFixed(3)} µs/line on the lines it accepts)`);
console.log(`ours, sanitise + parse + evaluate: ${(full / 1000).toFixed(3)} µs/line, ${(mathjsNs / full).toFixed(1)}x faster than mathjs (goal 5x)`);
console.log(`ours, parse + evaluate:            ${(raw / 1000).toFixed(3)} µs/line, ${(mathjsNs / raw).toFixed(1)}x faster than mathjs (goal 20x)`);
