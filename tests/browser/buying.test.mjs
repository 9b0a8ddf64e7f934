// Ordering what has run low, and orders that repeat.
import assert from 'node:assert/strict';
import { Shop, control, fieldError, listRows, logOn, openWindow } from './harness.mjs';

const PHONE = 390;
const press = (page, label) => page.click(`input[name=submit][value="${label}"]`);

async function isReadableOnAPhone(browser, shop, pages, shots) {
    const page = await openWindow(browser, PHONE, 800);
    await logOn(page, shop);
    for (const name of pages) {
        await page.goto(shop.url + name);
        const width = await page.evaluate(() => document.documentElement.scrollWidth);
        assert.ok(width <= PHONE, `${name} is ${width} wide`);
        const unnamed = await page.$$eval('input:not([type=hidden]):not([type=submit]):not([type=button]),select',
            (fields) => fields.filter((field) => !(field.labels?.length || field.getAttribute('aria-label')))
                .map((field) => field.outerHTML));
        assert.deepEqual(unnamed, [], name);
        if (shots) await page.screenshot({ path: `${shots}/${name.replace(/[^a-z]+/g, '-')}-${PHONE}.png` });
    }
    assert.deepEqual(page.complaints, []);
    await page.context().close();
}

async function checksARow(page, shop) {
    await page.goto(shop.url + 'orderlowstockitems');
    await page.fill(control(10001), 'ten');
    await page.press(control(10001), 'Tab');
    await page.waitForFunction((id) => document.getElementById(id).getAttribute('aria-invalid') === 'true', '10001');
    await press(page, 'Place orders');
    assert.equal((await fieldError(page)).message, 'The entered value "ten" is not valid number.');
    await page.fill(control(10001), '3');
    await page.fill(control(10002), '2.50');
    await page.press(control(10002), 'Tab');
    await page.waitForFunction((id) => document.getElementById(id).innerText === '$7.50', '10005');
    await page.click('text=Tick none');
    await press(page, 'Place orders');
    await page.waitForSelector('text=Tick the items that you want to order.');
}

async function placesOrders(page, shop, shots) {
    await page.goto(shop.url + 'orderlowstockitems');
    if (shots) await page.screenshot({ path: `${shots}/orderlowstockitems-1280.png` });
    const rows = await listRows(page);
    assert.ok(rows.length > 0);
    const groups = new Set(rows.map((row) => row[3] + '|' + row[4]));
    const second = await page.context().newPage();
    await second.goto(shop.url + 'orderlowstockitems');
    await press(page, 'Place orders');
    await page.waitForURL(/orderlist/);
    assert.equal(shop.files('Orders').length, groups.size, 'an order for each supplier and location');
    const lines = shop.files('Orders').map((file) => Number(shop.record('Orders/' + file).ItemCount));
    assert.equal(lines.reduce((sum, count) => sum + count), rows.length);
    await press(second, 'Place orders');
    await second.waitForSelector('text=ordered or received meanwhile');
    assert.equal(shop.files('Orders').length, groups.size, 'nobody orders it twice');
    await second.close();
    await page.goto(shop.url + 'orderlowstockitems');
    await page.waitForSelector('text=Nothing is short');
}

async function repeats(page, shop, shots) {
    await page.goto(shop.url + 'orderschedule');
    await page.waitForSelector('text=No order repeats yet.');
    const before = shop.files('Orders').length;
    await page.goto(shop.url + 'orderschedule?id=10000');
    await page.selectOption(control(102), { label: 'Weekly' });
    await page.selectOption(control(103), { label: 'Print' });
    await press(page, '  OK  ');
    await page.waitForURL(/orderschedule$/);
    const [row] = await listRows(page);
    assert.deepEqual([row[0], row[2]], ['RCR1', 'Weekly']);
    if (shots) await page.screenshot({ path: `${shots}/orderschedule-1280.png` });
    await page.click('text=Run what is due');
    await page.click('text=Yes');
    await page.waitForSelector('text=has been placed');
    const told = await page.innerText('body');
    assert.match(told, /Order \d+ may not have printed successfully\./, 'there is no printer here');
    assert.equal(shop.files('Orders').length, before + 1);
    assert.equal(shop.record('OrdersRecurring/RCR1.dat').RecurLast, new Date().toISOString().slice(0, 10));
    await page.reload().catch(() => {});
    assert.equal(shop.files('Orders').length, before + 1, 'once');
    await page.goto(shop.url + 'orderschedule?id=RCR1');
    await page.fill(control(101), '');
    await press(page, '  OK  ');
    assert.equal((await fieldError(page)).message, 'Please enter a valid date.');
}

export default async function buying({ test, browser, executable, shots }) {
    const shop = new Shop(executable);
    try {
        await shop.setUp('--sample');
        shop.forgetOrders();
        const page = await openWindow(browser);
        await logOn(page, shop);
        await isReadableOnAPhone(browser, shop, ['orderlowstockitems', 'orderschedule'], shots);
        await test('a row of the low-stock list is checked', () => checksARow(page, shop));
        await test('low stock becomes orders, once', () => placesOrders(page, shop, shots));
        await test('an order repeats', () => repeats(page, shop, shots));
        await isReadableOnAPhone(browser, shop, ['orderschedule', 'orderschedule?id=RCR1'], shots);
        assert.deepEqual(page.complaints, []);
    } finally {
        await shop.tearDown();
    }
}
