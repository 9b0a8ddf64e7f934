// Nobody is shut out: no page has a serious fault for those who cannot see or use a mouse, and the
// way from the logon to a saved record can be gone by keyboard alone.
import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import { EMAIL, PASSWORD, Shop, control, fieldError, listRows, logOn, openWindow, pressOk } from './harness.mjs';
import { PAGES } from './pages.test.mjs';

const AXE = createRequire(import.meta.url).resolve('axe-core/axe.min.js');
const WITHOUT_SESSION = ['logon', 'lostpassword', 'lostpasswordsent', 'userdelete'];
const KINDS = ['all', 'loccat', 'location', 'category', 'image', 'supplier', 'sales'];
const GUIDE = ['index', 'start', 'items', 'transfers', 'history', 'orders', 'lowstock', 'recurring', 'reports',
    'email', 'backup', 'link'].map((name) => `guide/${name}.html`);
const FURTHER = ['chooseprofile', 'changepassword', 'changepasswordchanged', ...GUIDE,
    'itemprop', 'catprop', 'locprop', 'supplierprop', 'customerprop', 'userprop?id=owner%40example.com',
    'itemlist?stock=Below%20warning%20level', 'itemtransfer', 'catdelete?id=1', 'supplierdelete?id=1',
    'orderlowstockitems', 'orderlowstockitems?mode=Items%20with%20current%20stock%20a%20percentage%20below%20ideal%20quantity', 'orderschedule',
    'reports', ...KINDS.map((kind) => 'generatereport?kind=' + kind), 'reportlowlevel', 'reportbackorder',
    'reportlocation', 'reportcatimage', 'reportsupplier', 'reportsales'];
// What is only there once something was ordered and moved.
const OF_RECORDS = ['orderlist', 'orderprop?id=10000', 'itemonorderlist', 'orderreceive?id=10000',
    'orderschedule', 'orderschedule?id=RCR1', 'runrecurringorder', 'transferlist', 'transferview?id=TRF1',
    'transfersend?id=TRF1', 'transfernote?id=TRF1', 'transfercancel?id=TRF1', 'reportbackorder'];
const PHONE_AGENT = 'Mozilla/5.0 (Linux; Android 14; Phone) Mobile';

async function faults(page) {
    await page.addScriptTag({ path: AXE });
    const { violations } = await page.evaluate(() => axe.run(document, { resultTypes: ['violations'] }));
    return violations.filter(({ impact }) => impact === 'serious' || impact === 'critical').map(
        ({ id, nodes }) => `${id}: ${nodes.slice(0, 3).map((node) => node.html.slice(0, 160)).join(' | ')}`);
}

async function inspectAll(page, shop, names) {
    const found = [];
    for (const name of names) {
        await page.goto(shop.url + name);
        assert.equal(new URL(page.url()).pathname, '/' + name.replace(/\?.*/, ''), 'it is there');
        found.push(...(await faults(page)).map((fault) => `${name}: ${fault}`));
    }
    assert.deepEqual(found, []);
}

// Presses Tab until the focus is on what `selector` finds.
async function tabTo(page, selector) {
    for (let i = 0; i < 80; ++i) {
        if (await page.evaluate((wanted) => document.activeElement.matches(wanted), selector)) return;
        await page.keyboard.press('Tab');
    }
    assert.fail(`${selector} cannot be reached by Tab on ${page.url()}`);
}

async function follow(page, selector, target) {
    await tabTo(page, selector);
    await Promise.all([page.waitForURL((url) => url.pathname === '/' + target), page.keyboard.press('Enter')]);
    await page.waitForLoadState();
}

const hasFocus = (page, id) => page.waitForFunction((wanted) => document.activeElement?.id === wanted, String(id));

async function byKeyboard(browser, shop) {
    const page = await openWindow(browser);
    await page.goto(shop.url);
    await hasFocus(page, 101);
    await page.keyboard.type(EMAIL);
    await page.keyboard.press('Tab');
    await page.keyboard.type(PASSWORD);
    await Promise.all([page.waitForURL(/\/main$/), page.keyboard.press('Enter')]);
    await follow(page, 'main a[href="loclist"]', 'loclist');
    const before = await listRows(page);
    await follow(page, 'a[href="locprop"]', 'locprop');
    await hasFocus(page, 101);
    await page.keyboard.press('Enter');
    assert.deepEqual(await fieldError(page),
        { message: 'Please enter the location name.', control: 101, focused: true });
    assert.deepEqual(await faults(page), []);
    await page.keyboard.type('Cellar');
    await follow(page, 'input[name=submit][value="  OK  "]', 'loclist');
    assert.equal((await listRows(page)).length, before.length + 1);
    await tabTo(page, 'input[type=search]');
    await page.keyboard.type('cellar');
    await page.waitForFunction(() => document.querySelectorAll('table.hltbl tbody tr').length === 1);
    await follow(page, 'tbody a[href^="locprop"]', 'locprop');
    await hasFocus(page, 101);
    assert.equal(await page.inputValue(control(101)), 'Cellar');
    await follow(page, 'input[name=submit][value="Cancel"]', 'loclist');
    assert.deepEqual(page.complaints, []);
    await page.context().close();
}

// Orders what is low, makes one order repeat and asks for a transfer.
async function makeRecords(page, shop) {
    const press = (label, target) => Promise.all([page.waitForURL((url) => url.pathname === '/' + target),
        page.click(`input[name=submit][value="${label}"]`)]);
    await page.goto(shop.url + 'orderlowstockitems');
    await press('Place orders', 'orderlist');
    await page.goto(shop.url + 'orderschedule?id=10000');
    await press('  OK  ', 'orderschedule');
    await page.goto(shop.url + 'itemtransfer?id=1&loc=Shop%20Floor');
    await page.selectOption(control(102), 'Stockroom');
    await page.fill(control(1001), '1');
    await page.selectOption(control(103), 'Requested');
    await press('  OK  ', 'itemlist');
}

// A phone says so itself; the person may choose otherwise, and is remembered.
async function layoutForPhones(browser, shop) {
    const context = await browser.newContext({ userAgent: PHONE_AGENT, viewport: { width: 390, height: 844 } });
    const page = await context.newPage();
    const isCompact = async () => !(await page.$('.headertable')) && !!(await page.$('meta[name=viewport]'));
    await logOn(page, shop);
    assert.equal(await isCompact(), true);
    await Promise.all([page.waitForEvent('load'), page.click('text=Full layout')]);
    assert.equal(await isCompact(), false);
    await page.goto(shop.url + 'itemlist');
    assert.equal(await isCompact(), false, 'remembered');
    await Promise.all([page.waitForEvent('load'), page.click('text=Layout for phones')]);
    assert.equal(await isCompact(), true);
    await context.close();
}

export default async function accessibility({ test, browser, executable }) {
    const shop = new Shop(executable);
    try {
        await shop.setUp('--sample');
        const page = await openWindow(browser);
        await test('no page before the logon has a serious fault', () => inspectAll(page, shop, WITHOUT_SESSION));
        await page.goto(shop.url + 'logon');
        await pressOk(page);
        await page.waitForSelector('#invalidTag');
        await test('nor has one with an error', async () => assert.deepEqual(await faults(page), []));
        await logOn(page, shop);
        await test('nor has any page behind it', () => inspectAll(page, shop, [...PAGES, ...FURTHER]));
        await makeRecords(page, shop);
        await test('nor one of what was ordered and moved', () => inspectAll(page, shop, OF_RECORDS));
        await page.context().addCookies([{ name: 'quillmarsh_layout', value: 'compact', url: shop.url }]);
        await page.setViewportSize({ width: 390, height: 844 });
        await test('nor has one in the layout for phones', () =>
            inspectAll(page, shop, [...PAGES, ...FURTHER, ...OF_RECORDS]));
        await page.context().close();
        await test('a phone gets the layout for phones, unless the person chose', () => layoutForPhones(browser, shop));
        await test('logon, list, dialog, error and success by keyboard alone', () => byKeyboard(browser, shop));
    } finally {
        await shop.tearDown();
    }
}
