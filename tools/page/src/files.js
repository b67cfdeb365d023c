// Files that the page writes: the field, its curves, a drawing of the view.
import { outlineEdges } from './edges.js';
import { levelTexts } from './levels.js';
import { styledLegend } from './picture.js';
import { visibleParts } from './raster.js';
import { depthOf, visibleCurves } from './still.js';

/**
 * As `qelm solve` writes it: the value of every vertex, in the mesh file's order, in full. Vertices in no triangle
 * (facts.noValue, by their numbers) are not among the page's, and have none.
 */
export function fieldCsv({ data, surface, facts }) {
  const lines = ['vertex,x,y,z,value'];
  const { positions } = data;
  const others = new Map((facts.noValue ?? []).map(({ vertex, point }) => [vertex, point]));
  const addOthers = () => {
    for (; others.has(lines.length - 1); lines.push(`${lines.length - 1},${others.get(lines.length - 1).join()},`));
  };
  addOthers();
  surface.field.forEach((value, v) => {
    lines.push(`${lines.length - 1},${positions[3 * v]},${positions[3 * v + 1]},${positions[3 * v + 2]},${value}`);
    addOthers();
  });
  return `${lines.join('\n')}\n`;
}

/** Polylines of the levels that are shown, as `qelm curves` writes them. */
export function curvesObj({ surface }) {
  const { points, starts, levels, closed } = surface.traced;
  const lines = ['# level curves written by qelm'];
  let first = 1; // OBJ files number their vertices from 1
  levels.forEach((l, c) => {
    if (!surface.isLevelShown(l)) return;
    if (lines.length === 1 || levels[c - 1] !== l) lines.push(`g level_${surface.levels[l]}`);
    const count = starts[c + 1] - starts[c];
    for (let p = starts[c]; p < starts[c + 1]; ++p)
      lines.push(`v ${surface.toCaller([...points.subarray(3 * p, 3 * p + 3)]).join(' ')}`);
    const places = Array.from({ length: count }, (_, k) => first + k);
    lines.push(`l ${[...places, ...(closed[c] ? [first] : [])].join(' ')}`);
    first += count;
  });
  return `${lines.join('\n')}\n`;
}

const escaped = (text) => text.replaceAll('&', '&amp;').replaceAll('<', '&lt;').replaceAll('>', '&gt;');
const pathOf = (parts) =>
  parts
    .map((part) => {
      const places = [];
      for (let k = 0; k < part.length; k += 2) places.push(`${part[k].toFixed(2)} ${part[k + 1].toFixed(2)}`);
      return `M${places.join('L')}`;
    })
    .join('');

/** The view as lines: outline, curves in their colours, scale. */
export function drawingSvg(page) {
  const { surface, facts } = page;
  const { width, height } = surface;
  const { depth, points } = depthOf(surface);
  const outline = outlineEdges(surface.mesh, points).flatMap(([v, w]) =>
    visibleParts(depth, Float32Array.of(...points.subarray(3 * v, 3 * v + 3), ...points.subarray(3 * w, 3 * w + 3)), 0, 2, false),
  );
  const texts = levelTexts(surface.levels);
  const curves = visibleCurves(surface, depth).map(
    ({ level, parts }) =>
      `<path stroke="${surface.colourOf(surface.levels[level]).getStyle()}" d="${pathOf(parts)}"><title>${texts[level]}</title></path>`,
  );
  const legend = styledLegend(page.legend.svg);
  const { left, top } = page.legend.svg.getBoundingClientRect();
  legend.setAttribute('x', left);
  legend.setAttribute('y', top);
  return `<svg xmlns="http://www.w3.org/2000/svg" width="${width}" height="${height}" viewBox="0 0 ${width} ${height}">
<title>${escaped(facts.name)}</title>
<rect width="100%" height="100%" fill="#fff"/>
<g fill="none" stroke-width="1" stroke="#8c8c8c" stroke-linecap="round"><path d="${pathOf(outline)}"/></g>
<g fill="none" stroke-width="1.6" stroke-linejoin="round" stroke-linecap="round">
${curves.join('\n')}
</g>
${new XMLSerializer().serializeToString(legend)}
</svg>
`;
}

/** Offers text, or a data URL, as a file named after the mesh. */
export function offer(page, extension, content, type) {
  const isUrl = type === undefined;
  const url = isUrl ? content : URL.createObjectURL(new Blob([content], { type }));
  const link = document.createElement('a');
  link.download = `${page.facts.name.replace(/\.[^.]*$/, '')}.${extension}`;
  link.href = url;
  link.click();
  if (!isUrl) setTimeout(() => URL.revokeObjectURL(url), 10000);
}
