// What both pages begin with: show the page, or say why not.
import { bytesFromBase64, decodeMesh } from './decode.js';

const byId = (id) => document.getElementById(id);

/** Says how far loading is, and waits until that can be seen. */
async function progress(text) {
  byId('progress').textContent = text;
  await new Promise((done) => requestAnimationFrame(() => setTimeout(done)));
}

/**
 * Makes the page by `make(facts, data)`; it stays at hand as `qelmPage` for tests and for whoever
 * is curious. `name`: what is being made, for those who wait.
 */
export async function runPage(make) {
  try {
    const facts = JSON.parse(byId('page-facts').textContent);
    await progress(`Loading ${facts.name}: reading`);
    const bytes = bytesFromBase64(byId('page-mesh').textContent);
    byId('page-mesh').textContent = '';
    await progress(`Loading ${facts.name}: ${facts.triangles.toLocaleString('en')} triangles`);
    const data = decodeMesh(bytes);
    await progress(`Loading ${facts.name}: drawing`);
    window.qelmPage = await make(facts, data);
  } catch (error) {
    const failure = byId('failure');
    failure.textContent = `This page cannot be shown: ${error.message}.`;
    failure.hidden = false;
    throw error;
  } finally {
    byId('progress').hidden = true;
  }
}
