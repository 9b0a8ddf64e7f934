// Every report of the sample shop: chosen, shown, readable on a phone, and saved for spreadsheets.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { Shop, control, logOn, openWindow } from './harness.mjs';

const KINDS = ['all', 'loccat', 'location', 'category', 'image', 'supplier', 'sales', 'lowstock', 'backorder'];
const DIALOGS = ['reportlocation', 'reportcatimage', 'reportsupplier', 'reportsales'];
const DAYS = '&from=2000-01-01&to=2100-01-01';
const SHOW = 'input[name=submit][value="Show report"]';
const number = (text) => Number(text.replace(/[$,]/g, ''));

async function show(page, target) {
    await Promise.all([page.waitForURL((url) => url.pathname === '/' + target), page.click(SHOW)]);
    await page.waitForLoadState();
}

// Total = sum of the rows = sum of the subtotals.
async function sumsAgree(page, shop) {
    for (const kind of ['all', 'loccat', 'image', 'supplier', 'sales']) {
        await page.goto(`${shop.url}generatereport?kind=${kind}${DAYS}`);
        const rows = await page.$$eval('table.hltbl tbody tr', (found) => found.map((row) => ({
            kind: row.className, last: [...row.cells].filter((cell) => cell.innerText.startsWith('$') ||
                cell.innerText.startsWith('-$')).at(-1)?.innerText ?? '0' })));
        const sum = (wanted) => rows.filter((row) => row.kind === wanted)
            .reduce((total, row) => total + Math.round(number(row.last) * 100), 0);
        assert.ok(rows.length > 5, kind);
        assert.equal(sum('total'), sum('subtotal'), kind);
        assert.equal(sum('total'), sum(''), kind);
    }
}

async function chooseAndShow(page, shop) {
    await page.goto(shop.url + 'main');
    await page.click('a[href="reports"]');
    await page.click('a[href="reportlocation"]');
    await page.selectOption(control(101), 'location');
    assert.ok(await page.isDisabled(control(103)), 'no category is asked for');
    await page.selectOption(control(102), { label: 'Stockroom' });
    await show(page, 'generatereport');
    assert.match(await page.innerText('.summary'), /Location: Stockroom/);
    const stored = shop.files('Items').map((name) => shop.record('Items/' + name))
        .filter((item) => /"1\//.test(item.LocationsAndQuantities ?? '')).length;
    assert.ok(stored > 10);
    await page.click('text=Other choices');
    assert.equal(await page.inputValue(control(101)), 'location');
}

async function refuseWrongDays(page, shop) {
    await page.goto(shop.url + 'reportsales');
    await page.fill(control(105), '2026-02-02');
    await page.fill(control(106), '2026-02-01');
    await page.click(SHOW);
    await page.waitForSelector('#invalidTag');
    assert.match(await page.innerText('#invalidTag'), /End date must follow start date\./);
}

async function save(page, shop) {
    await page.goto(shop.url + 'reportsupplier');
    const [download] = await Promise.all([page.waitForEvent('download'),
        page.click('input[name=submit][value="Save as CSV"]')]);
    assert.equal(download.suggestedFilename(), 'Inventory-Report-by-Default-Supplier.csv');
    const lines = readFileSync(await download.path(), 'utf8').split('\r\n');
    assert.equal(lines[0], 'Item,Description,Location,Category,Quantity,Cost Value,Price Value,Line Total');
    assert.match(lines.at(-2), /^Total,/);
    await page.waitForURL(shop.url + 'reports');
}

async function everyReport(page, shop, width, shots) {
    for (const name of ['reports', ...DIALOGS, ...KINDS.map((kind) => `generatereport?kind=${kind}${DAYS}`)]) {
        assert.equal((await page.goto(shop.url + name)).status(), 200, name);
        await page.waitForLoadState();
        const seen = await page.evaluate(() => ({ width: document.documentElement.scrollWidth, title: document.title }));
        assert.ok(seen.width <= width, `${name} is ${seen.width} wide in a window of ${width}`);
        assert.match(seen.title, /^Quillmarsh - .+/);
        if (shots) await page.screenshot({ path: join(shots, `${name.replace(/&.*/, '').replace(/[^a-z]+/g, '-')}-${width}.png`) });
    }
}

export default async function reports({ test, browser, executable, shots }) {
    const shop = new Shop(executable);
    try {
        await shop.setUp('--sample');
        const page = await openWindow(browser);
        await logOn(page, shop);
        await test('reports: a report is chosen and shown', () => chooseAndShow(page, shop));
        await test('reports: rows, subtotals and totals agree', () => sumsAgree(page, shop));
        await test('reports: days that run backwards are refused', () => refuseWrongDays(page, shop));
        await test('reports: a report is saved for spreadsheets', () => save(page, shop));
        await test('reports: each fits a wide window', () => everyReport(page, shop, 1280, shots));
        assert.deepEqual(page.complaints, []);
        const phone = await openWindow(browser, 390, 844);
        await logOn(phone, shop);
        await test('reports: each fits a phone', () => everyReport(phone, shop, 390, shots));
    } finally {
        await shop.tearDown();
    }
}
