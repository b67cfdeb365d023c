// Entry of the page that `qelm view` writes.
import { Page } from './page.js';
import { runPage } from './start.js';

runPage((facts, data) => new Page(facts, data));
