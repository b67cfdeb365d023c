// usage: node build.mjs ENTRY TEMPLATE OUT [LIBRARY.mjs]
// Bundles ENTRY and page.css into TEMPLATE: one HTML file that needs nothing else but
// what replaces its @QELM_...@ marks. LIBRARY is the library as a JavaScript module, for pages
// that solve.
import { readFile, writeFile } from 'node:fs/promises';
import path from 'node:path';
import { build, transform } from 'esbuild';

const [entry, template, out, library] = process.argv.slice(2);

// What ends a script element or opens a comment must not stand in one.
const inScript = (code) => code.replaceAll('</script', '<\\/script').replaceAll('<!--', '<\\!--');

const bundle = await build({
  entryPoints: [entry],
  bundle: true,
  minify: true,
  format: 'esm',
  target: 'es2022',
  charset: 'utf8',
  legalComments: 'eof',
  alias: library ? { 'qelm-library': path.resolve(library) } : {},
  write: false,
});
const css = await readFile(path.join(path.dirname(template), 'page.css'), 'utf8');
const style = await transform(css, { loader: 'css', minify: true });
const packages = ['three', 'three-mesh-bvh'];
const licences = await Promise.all(
  packages.map(async (name) => {
    const text = await readFile(path.join('node_modules', name, 'LICENSE'), 'utf8');
    return `${name}:\n\n${text.trim().replaceAll('--', '- -')}\n`;
  }),
);
const pieces = {
  '<!--@LICENCES@-->': `<!--\nThis page contains\n\n${licences.join('\n')}-->`,
  // WebAssembly comes as data inside of the module.
  '@MORE_SOURCES@': library ? " 'wasm-unsafe-eval'; connect-src data:" : '',
  '/*@STYLE@*/': style.code,
  '/*@SCRIPT@*/': inScript(bundle.outputFiles[0].text),
};
let html = await readFile(template, 'utf8');
for (const [mark, text] of Object.entries(pieces)) {
  if (html.split(mark).length !== 2) throw new Error(`${template}: ${mark} must stand there once`);
  html = html.replace(mark, () => text);
}
await writeFile(out, html);
