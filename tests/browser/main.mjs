// Runs every test of the test files named below, one after the other, and counts.
import { openBrowser } from './harness.mjs';
import accessibility from './accessibility.test.mjs';
import buying from './buying.test.mjs';
import firstSale from './first_sale.test.mjs';
import orders from './orders.test.mjs';
import pages from './pages.test.mjs';
import reports from './reports.test.mjs';
import stockMoves from './stock_moves.test.mjs';
import uploads from './uploads.test.mjs';
import viewer from './viewer.test.mjs';

const [, , executable, shots] = process.argv;
const browser = await openBrowser();
let passed = 0, failed = 0;

const test = async (name, run) => {
    try {
        await run();
        ++passed;
        console.log(`ok      ${name}`);
    } catch (error) {
        ++failed;
        console.log(`FAILED  ${name}\n        ${String(error.stack || error).split('\n').slice(0, 6).join('\n        ')}`);
    }
};

for (const suite of [firstSale, orders, pages, accessibility, uploads, stockMoves, buying, reports, viewer]) {
    await test(`${suite.name} runs to its end`, () => suite({ test, browser, executable, shots }));
}
await browser.close();
console.log(`browser: ${passed} passed, ${failed} failed`);
process.exitCode = failed ? 1 : 0;
