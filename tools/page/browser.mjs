// A headless browser for pages: their tests, and pictures of them.
import { mkdtemp, rm } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { pathToFileURL } from 'node:url';
import puppeteer from 'puppeteer-core';

const kOptions = [
  '--no-sandbox',
  '--use-gl=angle',
  '--use-angle=swiftshader',
  '--enable-unsafe-swiftshader',
  '--disable-background-networking',
  '--disable-component-update',
  '--disable-quic',
  '--disable-sync',
  '--no-first-run',
];

/** {browser, close()}: a browser with an empty profile of its own. */
export async function startBrowser() {
  const profile = await mkdtemp(path.join(tmpdir(), 'qelm-browser-'));
  const browser = await puppeteer.launch({
    executablePath: process.env.QELM_CHROMIUM ?? '/usr/bin/chromium',
    headless: true,
    userDataDir: profile,
    args: kOptions,
  });
  const close = async () => {
    await browser.close();
    await rm(profile, { recursive: true, force: true });
  };
  return { browser, close };
}

/**
 * Opens a page's file and waits for its first picture. `touch` makes the window a phone's, with two
 * dots for each pixel; `fragment` begins with #; the function `before` runs before the page's
 * script; `patience` is in milliseconds. `page.complaints` lists what the
 * console and the network had to say about it: nothing, if all is well.
 */
export async function openPage(
  browser,
  file,
  { width = 1200, height = 800, theme = 'light', touch = false, fragment = '', before = null, patience = 30000 } = {},
) {
  const page = await browser.newPage();
  page.complaints = [];
  page.on('console', (message) => {
    if (['error', 'warning', 'warn'].includes(message.type()) && !isDriversNote(message.text()))
      page.complaints.push(message.text());
  });
  page.on('pageerror', (error) => page.complaints.push(String(error)));
  page.on('request', (request) => {
    const url = request.url();
    if (!/^(file|data|blob):/.test(url)) page.complaints.push(`asked for ${url}`);
  });
  await page.emulateMediaFeatures([{ name: 'prefers-color-scheme', value: theme }]);
  await page.setViewport({ width, height, hasTouch: touch, isMobile: touch, deviceScaleFactor: touch ? 2 : 1 });
  if (before) await page.evaluateOnNewDocument(before);
  await page.goto(pathToFileURL(file).href + fragment, { timeout: patience });
  await page.waitForFunction(() => window.qelmPage?.surface.drawn > 0, { timeout: patience });
  return page;
}

// The software renderer says so when pixels are read back.
const isDriversNote = (text) => /GPU stall due to ReadPixels|GL Driver Message/.test(text);
