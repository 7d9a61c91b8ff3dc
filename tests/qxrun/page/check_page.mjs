// Opens a report page in headless Chromium and checks it the way a person would look at it.
//
//   node check_page.mjs PAGE.html [--expect KEY=NUMBER]... [--json FILE --pointer /a/b --key KEY]
//                       [--max-bytes N] [--max-candles N] [--screenshot OUT.png]
//
// Fails (exit 1, one line per fault) on a console error, an uncaught page error, a request that
// leaves the file, a blank chart, a statistics row whose first cell is not the expected number
// (within 0.005, thousands separators ignored), a page larger than --max-bytes or one drawing
// more than --max-candles candles. Exit 2 on bad usage.
import { chromium } from 'playwright-core';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { pathToFileURL } from 'node:url';
import zlib from 'node:zlib';

const kBrowser = process.env.QXRUN_CHROMIUM || '/usr/bin/chromium';
const kTolerance = 0.005;
const kMinColours = 32;  // a drawn chart has many shades: candles, lines, anti-aliased text

function usage(message) {
  console.error(`check_page: ${message}`);
  console.error('usage: check_page.mjs PAGE.html [--expect KEY=NUMBER]... ' +
    '[--json FILE --pointer /json/pointer --key KEY] [--max-bytes N] [--max-candles N] ' +
    '[--screenshot OUT.png]');
  process.exit(2);
}

function parseArguments(argv) {
  const options = { expect: [], page: null };
  let json = null;
  let pointer = null;
  let jsonKey = null;
  for (let i = 0; i < argv.length; ++i) {
    const argument = argv[i];
    const value = () => {
      if (i + 1 >= argv.length) usage(`${argument} needs a value`);
      return argv[++i];
    };
    if (argument === '--expect') {
      const text = value();
      const split = text.indexOf('=');
      const number = Number(text.slice(split + 1));
      if (split <= 0 || text.slice(split + 1) === '' || !Number.isFinite(number)) {
        usage(`--expect wants KEY=NUMBER, not '${text}'`);
      }
      options.expect.push({ key: text.slice(0, split), number, source: '--expect' });
    } else if (argument === '--json') {
      json = value();
    } else if (argument === '--pointer') {
      pointer = value();
    } else if (argument === '--key') {
      jsonKey = value();
    } else if (argument === '--max-bytes') {
      options.maxBytes = Number(value());
    } else if (argument === '--max-candles') {
      options.maxCandles = Number(value());
    } else if (argument === '--screenshot') {
      options.screenshot = value();
    } else if (argument.startsWith('--')) {
      usage(`unknown option ${argument}`);
    } else if (options.page === null) {
      options.page = argument;
    } else {
      usage(`one page only, not also '${argument}'`);
    }
  }
  if (options.page === null) usage('no page given');
  if (json !== null || pointer !== null || jsonKey !== null) {
    if (json === null || pointer === null || jsonKey === null) {
      usage('--json, --pointer and --key go together');
    }
    options.expect.push({ key: jsonKey, number: readPointer(json, pointer),
      source: `${json}${pointer}` });
  }
  return options;
}

// The number at an RFC 6901 pointer of a JSON file.
function readPointer(file, pointer) {
  let node;
  try {
    node = JSON.parse(fs.readFileSync(file, 'utf8'));
  } catch (error) {
    usage(`cannot read ${file}: ${error.message}`);
  }
  if (pointer !== '' && !pointer.startsWith('/')) usage(`pointer '${pointer}' must start with /`);
  for (const raw of pointer.split('/').slice(1)) {
    const token = raw.replaceAll('~1', '/').replaceAll('~0', '~');
    if (node === null || typeof node !== 'object' || !(token in node)) {
      usage(`${file} has nothing at ${pointer}`);
    }
    node = node[token];
  }
  if (typeof node !== 'number') usage(`${file}${pointer} is not a number`);
  return node;
}

// Pixels of a PNG as RGBA, for the 8-bit, non-interlaced images a browser writes.
function decodePng(buffer) {
  if (buffer.readUInt32BE(0) !== 0x89504e47) throw new Error('not a PNG');
  let offset = 8;
  let width = 0;
  let height = 0;
  let colourType = 0;
  const chunks = [];
  while (offset < buffer.length) {
    const length = buffer.readUInt32BE(offset);
    const type = buffer.toString('ascii', offset + 4, offset + 8);
    const body = buffer.subarray(offset + 8, offset + 8 + length);
    if (type === 'IHDR') {
      width = body.readUInt32BE(0);
      height = body.readUInt32BE(4);
      colourType = body[9];
      if (body[8] !== 8 || body[12] !== 0 || (colourType !== 2 && colourType !== 6)) {
        throw new Error('unsupported PNG layout');
      }
    } else if (type === 'IDAT') {
      chunks.push(body);
    }
    offset += 12 + length;
  }
  const channels = colourType === 6 ? 4 : 3;
  const stride = width * channels;
  const raw = zlib.inflateSync(Buffer.concat(chunks));
  const pixels = Buffer.alloc(width * height * 4);
  let previous = Buffer.alloc(stride);
  for (let y = 0; y < height; ++y) {
    const filter = raw[y * (stride + 1)];
    const line = Buffer.from(raw.subarray(y * (stride + 1) + 1, (y + 1) * (stride + 1)));
    for (let x = 0; x < stride; ++x) {
      const left = x >= channels ? line[x - channels] : 0;
      const up = previous[x];
      const upLeft = x >= channels ? previous[x - channels] : 0;
      let add = 0;
      if (filter === 1) add = left;
      else if (filter === 2) add = up;
      else if (filter === 3) add = (left + up) >> 1;
      else if (filter === 4) {
        const p = left + up - upLeft;
        const pa = Math.abs(p - left);
        const pb = Math.abs(p - up);
        const pc = Math.abs(p - upLeft);
        add = pa <= pb && pa <= pc ? left : pb <= pc ? up : upLeft;
      }
      line[x] = (line[x] + add) & 0xff;
    }
    for (let x = 0; x < width; ++x) {
      for (let c = 0; c < 4; ++c) {
        pixels[(y * width + x) * 4 + c] = c < channels ? line[x * channels + c] : 255;
      }
    }
    previous = line;
  }
  return { width, height, pixels };
}

function countColours({ pixels }) {
  const counts = new Map();
  for (let i = 0; i < pixels.length; i += 4) {
    const key = pixels.readUInt32BE(i);
    counts.set(key, (counts.get(key) || 0) + 1);
  }
  return { distinct: counts.size, commonest: Math.max(...counts.values()), total: pixels.length / 4 };
}

function parseCell(text) {
  const cleaned = text.trim().replace(/[,\s\u00a0\u202f']/g, '');
  return cleaned === '' ? NaN : Number(cleaned);
}

async function main() {
  const options = parseArguments(process.argv.slice(2));
  const faults = [];
  const pagePath = path.resolve(options.page);
  if (!fs.existsSync(pagePath)) usage(`${options.page} does not exist`);
  const bytes = fs.statSync(pagePath).size;
  if (options.maxBytes !== undefined && !(bytes < options.maxBytes)) {
    faults.push(`the page has ${bytes} bytes, not fewer than ${options.maxBytes}`);
  }

  const profile = fs.mkdtempSync(path.join(os.tmpdir(), 'check-page-'));
  const args = ['--disable-gpu', '--disable-background-networking', '--disable-component-update',
    '--disable-sync', '--no-first-run'];
  if (process.getuid && process.getuid() === 0) args.push('--no-sandbox');
  const context = await chromium.launchPersistentContext(profile, {
    executablePath: kBrowser, headless: true, args, viewport: { width: 1280, height: 900 },
  });
  try {
    const page = context.pages()[0] || await context.newPage();
    page.on('console', (message) => {
      if (message.type() === 'error') faults.push(`console error: ${message.text()}`);
    });
    page.on('pageerror', (error) => faults.push(`page error: ${error.message}`));
    page.on('request', (request) => {
      const url = request.url();
      if (!url.startsWith('file:') && !url.startsWith('data:') && !url.startsWith('blob:')) {
        faults.push(`the page asked for ${url}`);
      }
    });
    await page.goto(pathToFileURL(pagePath).href, { waitUntil: 'load', timeout: 60000 });
    // Two frames after load, so the chart has painted.
    await page.evaluate(() => new Promise((done) => requestAnimationFrame(() =>
      requestAnimationFrame(done))));

    const chart = page.locator('#chart');
    const box = await chart.count() === 1 ? await chart.boundingBox() : null;
    if (await chart.count() !== 1) {
      faults.push('the page has no #chart');
    } else if (box === null || box.width < 1 || box.height < 1) {
      faults.push('the chart looks blank: #chart has no area on the page');
    } else {
      const shot = await chart.screenshot({ timeout: 30000 });
      if (options.screenshot) fs.writeFileSync(options.screenshot, shot);
      const colours = countColours(decodePng(shot));
      if (colours.distinct < kMinColours || colours.commonest > 0.98 * colours.total) {
        faults.push(`the chart looks blank: ${colours.distinct} colours, the commonest on ` +
          `${colours.commonest} of ${colours.total} pixels`);
      }
    }

    if (options.maxCandles !== undefined) {
      const candles = await page.evaluate(() => {
        const blob = document.getElementById('page-data');
        return blob ? JSON.parse(blob.textContent).candles.length : -1;
      });
      if (candles < 0) faults.push('the page holds no chart data');
      else if (candles > options.maxCandles) {
        faults.push(`the page draws ${candles} candles, more than ${options.maxCandles}`);
      }
    }

    for (const { key, number, source } of options.expect) {
      const text = await page.evaluate((k) => {
        const row = [...document.querySelectorAll('#stats tr[data-key]')]
          .find((r) => r.dataset.key === k);
        const cell = row ? row.querySelector('td') : null;
        return cell ? cell.textContent : null;
      }, key);
      if (text === null) {
        faults.push(`the statistics table has no row '${key}' with a cell`);
        continue;
      }
      const shown = parseCell(text);
      if (!(Math.abs(shown - number) <= kTolerance)) {
        faults.push(`statistics row '${key}' shows '${text}', expected ${number} (${source})`);
      }
    }
  } catch (error) {
    faults.push(`the check could not finish: ${error.message.split('\n')[0]}`);
  } finally {
    await context.close();
    fs.rmSync(profile, { recursive: true, force: true });
  }

  if (faults.length > 0) {
    for (const fault of faults) console.error(`check_page: ${options.page}: ${fault}`);
    process.exit(1);
  }
  console.log(`check_page: ${options.page}: ok (${bytes} bytes)`);
}

main().catch((error) => {
  console.error(`check_page: ${error.message.split('\n')[0]}`);
  process.exit(1);
});
