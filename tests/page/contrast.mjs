// How well text can be read: its colour against the pixels that lie behind it.
import assert from 'node:assert/strict';

const kLeast = 4.5; // WCAG 2.1, success criterion 1.4.3
const kStrayPart = 0.02; // of the pixels behind a text: a tick or a rim that it touches

// WCAG 2.1, relative luminance and contrast ratio.
const luminance = (colour) =>
  colour
    .map((c) => c / 255)
    .map((c) => (c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4))
    .reduce((sum, c, k) => sum + [0.2126, 0.7152, 0.0722][k] * c, 0);
export function contrast(a, b) {
  const [dark, light] = [luminance(a), luminance(b)].sort((p, q) => p - q);
  return (light + 0.05) / (dark + 0.05);
}

/** Of every text that is seen: {text, colour, left, top, right, bottom}. Disabled controls need no contrast. */
const textsOn = (page) =>
  page.evaluate(async () => {
    await Promise.all(document.getAnimations().map((animation) => animation.finished));
    // What lets a pointer through must be found at its place as well.
    const style = document.head.appendChild(document.createElement('style'));
    style.textContent = '* { pointer-events: auto !important; }';
    const found = [];
    const walker = document.createTreeWalker(document.getElementById('page'), NodeFilter.SHOW_TEXT);
    const add = (element, text, boxes) => {
      const style = getComputedStyle(element);
      const paint = element instanceof SVGElement ? style.fill : style.color;
      const colour = paint.match(/[\d.]+/g).map(Number).slice(0, 3);
      for (const { left, top, right, bottom } of boxes) {
        const isSeen = document.elementsFromPoint((left + right) / 2, (top + bottom) / 2)[0]?.contains(element);
        if (isSeen && right - left > 2) found.push({ text, colour, left, top, right, bottom });
      }
    };
    while (walker.nextNode()) {
      const { parentElement, textContent } = walker.currentNode;
      if (textContent.trim() === '' || parentElement.closest('.unseen, :disabled, title')) continue;
      const range = document.createRange();
      range.selectNodeContents(walker.currentNode);
      add(parentElement, textContent.trim(), range.getClientRects());
    }
    for (const box of document.querySelectorAll('input[type=number]')) add(box, box.value, [box.getBoundingClientRect()]);
    style.remove();
    return found;
  });

/** Every text of a session's page has at least kLeast. Returns how many there are. */
export async function textsCanBeRead(session, where) {
  const { page } = session;
  const texts = await textsOn(page);
  const style = await page.addStyleTag({ content: '* { transition: none !important; color: transparent !important; } text { fill: transparent !important; }' });
  const behind = await session.picture();
  await style.evaluate((element) => element.remove());
  const scale = behind.width / page.viewport().width;
  for (const { text, colour, left, top, right, bottom } of texts) {
    const known = new Map();
    const ratios = [];
    for (let y = Math.max(0, scale * top); y < Math.min(behind.height, scale * bottom); ++y)
      for (let x = Math.max(0, scale * left); x < Math.min(behind.width, scale * right); ++x) {
        const pixel = behind.at(x, y);
        const name = (pixel[0] << 16) | (pixel[1] << 8) | pixel[2];
        if (!known.has(name)) known.set(name, contrast(colour, pixel));
        ratios.push(known.get(name));
      }
    ratios.sort((a, b) => a - b);
    const least = ratios[Math.floor(kStrayPart * ratios.length)];
    assert.ok(least >= kLeast, `${where}: "${text}" has a contrast of ${least?.toFixed(2)}`);
  }
  return texts.length;
}
