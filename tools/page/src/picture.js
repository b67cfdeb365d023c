// The view as a picture, with its scale: to be saved, and to be printed.

// What the page's style sheet gives to parts of the scale.
const kLooks = ['fill', 'stroke', 'stroke-width', 'font-family', 'font-size', 'font-weight', 'font-variant-numeric', 'visibility'];

/** A copy of the legend, an SVG element, that looks as it does on the page without its style sheet. */
export function styledLegend(svg) {
  const copy = svg.cloneNode(true);
  const originals = svg.querySelectorAll('text, line, path');
  copy.querySelectorAll('text, line, path').forEach((element, k) => {
    const computed = getComputedStyle(originals[k]);
    element.setAttribute('style', kLooks.map((look) => `${look}:${computed.getPropertyValue(look)}`).join(';'));
  });
  copy.removeAttribute('style');
  copy.setAttribute('xmlns', 'http://www.w3.org/2000/svg');
  copy.setAttribute('width', svg.clientWidth);
  copy.setAttribute('height', svg.clientHeight);
  return copy;
}

async function legendImage(svg) {
  const image = new Image();
  image.src = `data:image/svg+xml,${encodeURIComponent(new XMLSerializer().serializeToString(styledLegend(svg)))}`;
  await image.decode();
  return image;
}

/** The page's view and scale on its background, as a canvas. */
export async function pictureOf(page) {
  const { canvas } = page;
  const svg = page.legend.svg;
  const legend = await legendImage(svg);
  const scale = canvas.width / canvas.clientWidth;
  const picture = document.createElement('canvas');
  picture.width = canvas.width;
  picture.height = canvas.height;
  const context = picture.getContext('2d');
  const background = getComputedStyle(document.documentElement);
  const gradient = context.createLinearGradient(0, 0, 0, picture.height);
  gradient.addColorStop(0, background.getPropertyValue('--sky'));
  gradient.addColorStop(1, background.getPropertyValue('--ground'));
  context.fillStyle = gradient;
  context.fillRect(0, 0, picture.width, picture.height);
  page.surface.drawNow(); // a drawn canvas can be read until the next frame only
  context.drawImage(canvas, 0, 0);
  context.drawImage(page.labels.canvas, 0, 0, picture.width, picture.height);
  const { left, top, width, height } = svg.getBoundingClientRect();
  context.drawImage(legend, left * scale, top * scale, width * scale, height * scale);
  return picture;
}

/** What is on paper: the mesh as it is seen now, on white, large; style sheets do the rest. */
export function followPrinting(page) {
  const print = document.createElement('canvas');
  print.id = 'print';
  document.getElementById('page').append(print);
  let theme;
  window.addEventListener('beforeprint', () => {
    theme = page.theme;
    page.setTheme('light');
    page.surface.drawNow();
    const { canvas } = page;
    const ratio = canvas.width / canvas.clientWidth;
    const { left, top, right, bottom } = page.surface.extent();
    const [width, height] = [(right - left) * ratio, (bottom - top) * ratio];
    Object.assign(print, { width: Math.max(1, width), height: Math.max(1, height) });
    for (const source of [canvas, page.labels.canvas])
      print.getContext('2d').drawImage(source, left * ratio, top * ratio, width, height, 0, 0, width, height);
    // The scale is drawn for the size that it has on the screen.
    const card = document.getElementById('scale-card');
    card.style.width = `${card.offsetWidth}px`;
    card.style.height = `${card.offsetHeight}px`;
  });
  window.addEventListener('afterprint', () => {
    document.getElementById('scale-card').removeAttribute('style');
    page.setTheme(theme);
  });
}
