// Entry of the page that `qelm view` writes.
import { bytesFromBase64, decodeMesh } from './decode.js';
import { Page } from './page.js';
import { runPage, textOf } from './start.js';

runPage(() => {
  const facts = JSON.parse(textOf('page-facts'));
  return new Page(facts, decodeMesh(bytesFromBase64(textOf('page-mesh'))));
});
