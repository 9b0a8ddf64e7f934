// Nobody is shut out: no page has a serious fault for those who cannot see or use a mouse, and the
// way from the logon to a saved record can be gone by keyboard alone.
import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import { EMAIL, PASSWORD, Shop, control, fieldError, listRows, logOn, openWindow, pressOk } from './harness.mjs';
import { PAGES } from './pages.test.mjs';

const AXE = createRequire(import.meta.url).resolve('axe-core/axe.min.js');
const WITHOUT_SESSION = ['logon', 'lostpassword', 'lostpasswordsent', 'userdelete'];
const FURTHER = ['chooseprofile', 'changepassword', 'changepasswordchanged', 'guide/index.html'];

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
        await page.context().addCookies([{ name: 'quillmarsh_layout', value: 'compact', url: shop.url }]);
        await page.setViewportSize({ width: 390, height: 844 });
        await test('nor has one in the layout for phones', () => inspectAll(page, shop, PAGES));
        await page.context().close();
        await test('logon, list, dialog, error and success by keyboard alone', () => byKeyboard(browser, shop));
    } finally {
        await shop.tearDown();
    }
}
