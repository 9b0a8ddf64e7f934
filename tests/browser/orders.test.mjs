// From an empty order to goods on the shelf: draft, record, receive, return, delete.
import assert from 'node:assert/strict';
import { join } from 'node:path';
import { Shop, control, fieldError, listRows, logOn, openWindow } from './harness.mjs';

const SUPPLIER = 101, RECEIPT_DATE = 103, SHIP_TO = 109, TOTALS = '#ordertotals';
const cell = (line, part) => control((1000 + line) * 10 + part);
const button = (name) => `input[name=submit][value="${name}"]`;

async function press(page, name, target) {
    await Promise.all([page.waitForURL((url) => url.pathname === '/' + target), page.click(button(name))]);
    await page.waitForLoadState();
}

async function totalIs(page, text) {
    await page.waitForFunction(([selector, wanted]) =>
        document.querySelector(selector).innerText.replace(/\s+/g, ' ').trim() === wanted, [TOTALS, text]);
}

async function writeOrder(page, shop, code) {
    await page.goto(shop.url + 'orderprop');
    await page.click(button('Record'));
    assert.deepEqual(await fieldError(page), {
        message: 'Supplier Name Required\nPlease enter the supplier name.', control: SUPPLIER, focused: true });
    await page.fill(control(SUPPLIER), 'Bolt Works & <Sons>');
    await page.click(button('Record'));
    await page.waitForFunction(() => document.getElementById('invalidTag')?.innerText.includes('blank'));
    await page.fill(cell(0, 0), code);
    await page.press(cell(0, 0), 'Tab');
    await page.waitForFunction((id) => document.querySelector(id).value !== '', cell(0, 1));
    await page.fill(cell(0, 3), '4');
    await page.fill(cell(0, 4), '2.50');
    await page.click('text=Add a line');
    await page.fill(cell(3, 0), 'BRAND-NEW');
    await page.fill(cell(3, 3), '1.5');
    await page.fill(cell(3, 4), '0.03');
    await page.selectOption(cell(0, 5), 'None');
    await page.selectOption(cell(3, 5), 'None');
    await totalIs(page, 'Subtotal $10.05 Total $10.05');
}

async function draftThenRecord(page, shop, code) {
    await writeOrder(page, shop, code);
    await page.click(button('Cancel'));
    await page.click('dialog >> button:text-is("Cancel")');
    await page.click(button('Cancel'));
    await Promise.all([page.waitForURL(/orderlist/), page.click('dialog >> button:text-is("Save")')]);
    const [draft] = await listRows(page);
    assert.deepEqual([draft[0], draft[1], draft[5], draft[6]], ['DFT1', 'Bolt Works & <Sons>', '$10.05', '']);
    await page.click('text=DFT1');
    await page.fill(control(RECEIPT_DATE), '2020-01-01');
    await page.click(button('Record'));
    assert.equal((await fieldError(page)).message,
        'Invalid Date\nThe receipt date must be after the issue date.');
    await page.fill(control(RECEIPT_DATE), '2099-01-01');
    await press(page, 'Record', 'orderlist');
    const rows = await listRows(page);
    assert.deepEqual(rows.map((row) => [row[0], row[5], row[6]]), [['10000', '$10.05', 'Open']]);
    assert.match(await page.innerText('body'), /1 Orders\. Total \$10\.05/);
    assert.equal(shop.record('Items/BRAND-NEW.dat').Name, 'BRAND-NEW');
}

// A delivery that names the order, and its row taken out of the history again.
async function receiveAPart(page, shop, code) {
    await page.goto(shop.url + 'itempurchasesell?type=receive&id=1&loc=Stockroom');
    await page.fill(control(103), '3');
    await page.selectOption(control(109), '10000');
    await page.click(button('  OK  '));
    await page.waitForURL(/itemlist/);
    await page.goto(shop.url + 'orderlist?receipts=Partly%20received');
    assert.deepEqual((await listRows(page)).map((row) => row[6]), ['Partial']);
    await page.goto(shop.url + 'itemonorderlist?item=1');
    assert.deepEqual((await listRows(page)).map((row) => row[6]), ['1.00']);
    const today = new Date().toISOString().slice(0, 10);
    await page.goto(`${shop.url}itemreceivelist?item=${code}&from=${today}`);
    await page.click('table.hltbl tbody tr:has(td:text-is("3.00")) >> text=Delete');
    await page.click('text=Yes');
    await page.waitForURL(/itemreceivelist/);
    await page.goto(shop.url + 'orderlist');
    assert.equal((await listRows(page))[0][6], 'Open');
}

async function receiveOnce(page, shop) {
    const rowsOfTheOrder = () => shop.files('ReceiveHistory')
        .flatMap((name) => shop.file('ReceiveHistory/' + name).trim().split('\r\n'))
        .filter((row) => row.includes(',10000,')).length;
    const before = rowsOfTheOrder();
    await page.goto(shop.url + 'itemonorderlist');
    assert.equal((await listRows(page)).length, 2);
    await page.goto(shop.url + 'orderlist');
    const link = await page.getAttribute('text=Receive >> nth=-1', 'href');
    for (const time of ['first', 'second']) {
        await page.goto(shop.url + link);
        assert.match(await page.innerText('body'),
            /Are you sure you want to receive stock for the selected order\?/);
        await page.click('text=Yes');
        await page.waitForLoadState();
        await page.goto(shop.url + 'orderlist');
        assert.equal((await listRows(page))[0][6], 'Received', time);
    }
    assert.equal(rowsOfTheOrder(), before + 2, 'the second press books nothing');
}

async function recordAgain(page, shop) {
    await page.goto(shop.url + 'orderprop?id=10000');
    const asked = [];
    const answer = (dialog) => { asked.push(dialog.message()); dialog.accept(); };
    page.on('dialog', answer);
    await page.fill(control(SHIP_TO), 'Dock 3');
    await press(page, 'Record', 'orderlist');
    page.off('dialog', answer);
    assert.deepEqual(asked, ['Stock has been received for this order, would you like to record it anyway?']);
    const order = shop.record('Orders/10000.dat');
    assert.deepEqual([order.ShippingAddress, order.StockReceived, order.Total], ['Dock 3', '1', '1005']);
}

async function returnAndDelete(page, shop) {
    await page.goto(shop.url + 'orderlist');
    for (const [link, after] of [['Return', 'Open'], ['Delete', '']]) {
        await page.click(`.rowactions >> text=${link}`);
        await page.click('text=Yes');
        await page.waitForURL(/orderlist/);
        const rows = await listRows(page);
        assert.equal(rows.length === 1 && rows[0].length > 6 ? rows[0][6] : '', after, link);
    }
    assert.deepEqual(shop.files('Orders').filter((name) => name.endsWith('.dat')), []);
}

async function onAPhone(page, shop, code, shots) {
    await writeOrder(page, shop, code);
    const width = await page.evaluate(() => document.documentElement.scrollWidth);
    if (shots) await page.screenshot({ path: join(shots, 'order-390.png'), fullPage: true });
    assert.ok(width <= 390, `${width} wide`);
}

export default async function orders({ test, browser, executable, shots }) {
    const shop = new Shop(executable);
    try {
        await shop.setUp('--sample');
        shop.forgetOrders();
        const page = await openWindow(browser);
        await logOn(page, shop);
        const code = shop.record('Items/1.dat').Name;
        await test('an order is drafted, then recorded', () => draftThenRecord(page, shop, code));
        if (shots) {
            await page.goto(shop.url + 'orderprop?id=10000');
            await page.waitForTimeout(500);
            await page.screenshot({ path: join(shots, 'order-1280.png'), fullPage: true });
            await page.goto(shop.url + 'orderlist');
            await page.screenshot({ path: join(shots, 'orders-1280.png') });
        }
        await test('a delivery counts on its order', () => receiveAPart(page, shop, code));
        await test('an order is received once, however often it is pressed', () => receiveOnce(page, shop));
        await test('a received order is only recorded again when asked', () => recordAgain(page, shop));
        await test('an order goes back and away', () => returnAndDelete(page, shop));
        await page.setViewportSize({ width: 390, height: 800 });
        await test('an order can be written on a phone', () => onAPhone(page, shop, code, shots));
        await test('the console has nothing to complain about', () => assert.deepEqual(page.complaints, []));
    } finally {
        await shop.tearDown();
    }
}
