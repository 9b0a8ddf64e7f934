// Every page of the sample shop: shown, titled, labelled, and readable on a phone.
import assert from 'node:assert/strict';
import { join } from 'node:path';
import { Shop, listRows, logOn, openWindow } from './harness.mjs';

export const PAGES = ['main', 'itemlist', 'itemprop?id=1', 'iteminventoryprop?id=1', 'itempurchasesell?type=receive&id=1',
    'itempurchasesell?type=sell', 'itemreceivelist', 'itemselllist', 'catlist', 'catprop?id=1', 'loclist',
    'locprop?id=1', 'supplierlist', 'supplierprop?id=1', 'customerlist', 'customerprop?id=1', 'userlist',
    'userprop', 'orderlist', 'orderprop', 'itemonorderlist', 'itembomprop?id=1', 'itemtransfer?id=1', 'transferlist',
    'customerotherprop?id=1', 'itemdelete?id=1&loc=Shop%20Floor'];
const PHONE = 390;

async function inspect(page) {
    return page.evaluate(() => {
        const fields = [...document.querySelectorAll('input:not([type=hidden]):not([type=submit]):not([type=button]),select,textarea')];
        const unnamed = fields.filter((field) => !(field.labels?.length || field.getAttribute('aria-label') ||
            field.title || field.closest('label')));
        return {
            title: document.title,
            unnamed: unnamed.map((field) => field.outerHTML.slice(0, 120)),
            width: document.documentElement.scrollWidth,
            text: document.body.innerText.length,
        };
    });
}

async function shoot(page, shots, name) {
    if (shots) await page.screenshot({ path: join(shots, name + '.png'), fullPage: name.includes('prop') });
}

async function everyPage(page, shop, width, shots) {
    for (const name of PAGES) {
        const answer = await page.goto(shop.url + name);
        assert.equal(answer.status(), 200, name);
        await page.waitForLoadState();
        const seen = await inspect(page);
        assert.match(seen.title, /^Quillmarsh - .+/, name);
        assert.deepEqual(seen.unnamed, [], `${name}: fields without a label`);
        assert.ok(seen.width <= width, `${name} is ${seen.width} wide in a window of ${width}`);
        await shoot(page, shots, `${name.replace(/[^a-z]+/g, '-').replace(/-$/, '')}-${width}`);
    }
}

async function filterAndFind(page, shop) {
    await page.goto(shop.url + 'itemlist');
    const all = await page.$$eval('table.hltbl tbody tr', (rows) => rows.length);
    await page.goto(shop.url + 'itemlist?stock=Below%20warning%20level');
    const low = await listRows(page);
    assert.ok(low.length > 0 && low.length < all, `${low.length} low of ${all}`);
    for (const row of low) {
        const [quantity, warning] = [row[8], row[9]].map((text) => Number(text.replace(/,/g, '')));
        assert.ok(quantity <= warning, row.join('|'));
    }
    await page.goto(shop.url + 'itemlist?category=Paint&location=Stockroom');
    const paint = await listRows(page);
    assert.ok(paint.length > 5);
    assert.ok(paint.every((row) => row[2] === 'Paint' && row[7] === 'Stockroom'));
}

async function sortByKeyboard(page, shop) {
    await page.goto(shop.url + 'itemlist?location=Stockroom');
    const header = page.locator('th', { hasText: 'Price' });
    const focus = (await header.locator('button').count()) ? header.locator('button') : header;
    await focus.focus();
    await page.keyboard.press('Enter');
    const prices = (await listRows(page)).map((row) => Number(row[5].replace(/[$,]/g, '')));
    assert.deepEqual(prices, [...prices].sort((a, b) => a - b));
    await page.keyboard.press('Enter');
    const falling = (await listRows(page)).map((row) => Number(row[5].replace(/[$,]/g, '')));
    assert.deepEqual(falling, [...falling].sort((a, b) => b - a));
    assert.ok(falling[0] > prices[0]);
}

// The whole page table: nothing it names is met with a bare 404.
async function everyNameAnswers(page, shop) {
    const names = ['transferlist', 'transferview', 'orderprop', 'reports', 'reportlocation', 'itemtransfer',
        'itembomprop', 'uploadProgress', 'saveItemDialogTab', 'getsubcate', 'orderschedule', 'generateOrderPDF', 'customerotherprop'];
    for (const name of names) {
        const answer = await page.context().request.get(shop.url + name);
        assert.notEqual(answer.status(), 404, name);
    }
}

async function withoutSession(browser, shop) {
    const page = await openWindow(browser);
    for (const name of [...PAGES.slice(0, 8), 'orderlist', 'reports']) {
        await page.goto(shop.url + name);
        assert.equal(new URL(page.url()).pathname, '/logon', name);
    }
    await page.context().close();
}

export default async function pages({ test, browser, executable, shots }) {
    const shop = new Shop(executable);
    try {
        await shop.setUp('--sample');
        const page = await openWindow(browser);
        await logOn(page, shop);
        await test('every page is titled and labelled', () => everyPage(page, shop, 1280, shots));
        await test('filters keep what they promise', () => filterAndFind(page, shop));
        await test('a column is sorted by keyboard, both ways', () => sortByKeyboard(page, shop));
        await test('every name of the page table is answered', () => everyNameAnswers(page, shop));
        const phone = await openWindow(browser, PHONE, 844);
        await phone.goto(shop.url + 'logon');
        await shoot(phone, shots, `logon-${PHONE}`);
        await logOn(phone, shop);
        await test('no page is wider than a phone', () => everyPage(phone, shop, PHONE, shots));
        await test('no page is shown without a session', () => withoutSession(browser, shop));
        await test('the console had nothing to complain about on any page', () =>
            assert.deepEqual([...page.complaints, ...phone.complaints], []));
        await phone.context().close();
        await page.context().close();
    } finally {
        await shop.tearDown();
    }
}
