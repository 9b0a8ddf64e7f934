// A viewer sees every form, cannot change it, and loses nothing by trying.
import assert from 'node:assert/strict';
import { Shop, control, logOn, openWindow, pressOkTo } from './harness.mjs';

const EMAIL = 'vera@example.com';
const FORMS = ['itemprop?id=1', 'iteminventoryprop?id=1', 'itembomprop?id=1', 'catprop?id=1', 'locprop?id=1',
    'supplierprop?id=1', 'customerprop?id=1', 'customerotherprop?id=1', 'orderprop'];

async function addViewer(page, shop) {
    await page.goto(shop.url + 'userprop');
    for (const [id, text] of [[101, 'Vera'], [102, EMAIL], [103, 'secret']]) await page.fill(control(id), text);
    await page.check(control(303));
    await pressOkTo(page, 'userlist');
}

async function looksAtForms(page, shop) {
    for (const name of FORMS) {
        await page.goto(shop.url + name);
        await page.waitForSelector('text=You may look at this, but not change it.');
        const left = await page.$$eval('#dialogform input:not([type=hidden]), #dialogform select, #dialogform textarea',
            (controls) => controls.filter((one) => !one.readOnly && !one.disabled || one.type === 'submit')
                .map((one) => one.value));
        assert.deepEqual(left, ['Cancel'], name);
    }
    await page.goto(shop.url + 'itemprop?id=1');
    const category = await page.inputValue(control(103));
    await page.click('text=Inventory');
    await page.waitForURL(/iteminventoryprop/);
    await page.click('.navtab >> nth=0');
    await page.waitForURL(/itemprop/);
    assert.equal(await page.inputValue(control(103)), category);
    await page.press(control(101), 'Enter');
    await page.waitForURL(/itemlist/);
}

export default async function viewer({ test, browser, executable }) {
    const shop = new Shop(executable);
    try {
        await shop.setUp('--sample');
        const boss = await openWindow(browser);
        await logOn(boss, shop);
        await addViewer(boss, shop);
        await boss.context().close();
        const page = await openWindow(browser);
        await page.goto(shop.url + 'logon');
        await page.fill(control(101), EMAIL);
        await page.fill(control(102), 'secret');
        await pressOkTo(page, 'chooseprofile');
        await pressOkTo(page, 'main');
        await test('a viewer looks at every form and can change none', () => looksAtForms(page, shop));
        await test('reports are for viewers too', async () => {
            await page.goto(shop.url + 'reportsupplier');
            await Promise.all([page.waitForURL(/generatereport/), page.click('text=Show report')]);
        });
        assert.deepEqual(page.complaints, []);
        await page.context().close();
    } finally {
        await shop.tearDown();
    }
}
