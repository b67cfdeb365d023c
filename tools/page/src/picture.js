// The view as a picture file, with its scale.

// What the page's style sheet gives to parts of the scale.
const kLooks = [
  'fill',
  'stroke',
  'stroke-width',
  'font-family',
  'font-size',
  'font-weight',
  'font-variant-numeric',
  'visibility',
];

/** Draws the legend, an SVG element, with the colours that it has on the page. */
async function legendImage(svg) {
  const copy = svg.cloneNode(true);
  const style = (element) => {
    const computed = getComputedStyle(element);
    return kLooks.map((look) => `${look}:${computed.getPropertyValue(look)}`).join(';');
  };
  const originals = svg.querySelectorAll('text, line, path');
  copy.querySelectorAll('text, line, path').forEach((element, k) => {
    element.setAttribute('style', style(originals[k]));
  });
  copy.setAttribute('xmlns', 'http://www.w3.org/2000/svg');
  copy.setAttribute('width', svg.clientWidth);
  copy.setAttribute('height', svg.clientHeight);
  const image = new Image();
  image.src = `data:image/svg+xml,${encodeURIComponent(new XMLSerializer().serializeToString(copy))}`;
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
  const { left, top, width, height } = svg.getBoundingClientRect();
  context.drawImage(legend, left * scale, top * scale, width * scale, height * scale);
  return picture;
}

/** Offers the picture as a file named after the mesh. */
export async function savePicture(page) {
  const picture = await pictureOf(page);
  const link = document.createElement('a');
  link.download = `${page.facts.name.replace(/\.[^.]*$/, '')}.png`;
  link.href = picture.toDataURL('image/png');
  link.click();
}
