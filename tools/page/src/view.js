// Entry of the page that `qelm view` writes.
import { bytesFromBase64, decodeMesh } from './decode.js';
import { Page } from './page.js';

const textOf = (id) => document.getElementById(id).textContent;

try {
  const facts = JSON.parse(textOf('page-facts'));
  window.qelmPage = new Page(facts, decodeMesh(bytesFromBase64(textOf('page-mesh'))));
} catch (error) {
  const failure = document.getElementById('failure');
  failure.textContent = `This page cannot be shown: ${error.message}. It needs a browser with WebGL 2.`;
  failure.hidden = false;
  throw error;
}
