// Stock that moves between locations, items made of others, pictures, and rows of the history taken
// back. Later tests go on with what earlier ones made.
import assert from 'node:assert/strict';
import { join } from 'node:path';
import { deflateSync } from 'node:zlib';
import { Shop, control, fieldError, listRows, logOn, openWindow, pressOk, pressOkTo } from './harness.mjs';

const LINE = 1000; // the first line's code; its quantity follows

async function addItem(page, shop, code, quantity) {
    await page.goto(shop.url + 'itemprop');
    for (const [id, text] of [[101, code], [103, 'Parts'], [105, '2'], [106, '3']]) await page.fill(control(id), text);
    await page.click('.navtabs >> text=Inventory');
    await page.waitForURL(/iteminventoryprop/);
    await page.fill(control(1000), quantity);
    await pressOkTo(page, 'itemlist');
}

async function setUpShop(page, shop) {
    await page.goto(shop.url + 'locprop');
    await page.fill(control(101), 'Yard');
    await pressOkTo(page, 'loclist');
    await addItem(page, shop, 'BOLT', '10');
    await addItem(page, shop, 'NUT', '20');
}

const stock = (shop, id) => shop.record(`Items/${id}.dat`).LocationsAndQuantities;

async function buildItem(page, shop) {
    await page.goto(shop.url + 'itemprop');
    for (const [id, text] of [[101, 'KIT'], [103, 'Parts'], [105, '9'], [106, '12']]) await page.fill(control(id), text);
    await page.click('.navtabs >> text=Components');
    await page.waitForURL(/itembomprop/);
    await page.check(control(301));
    await pressOk(page);
    assert.deepEqual(await fieldError(page),
        { message: 'Select items of bill-of-material item', control: 401, focused: true });
    for (const [code, quantity, message, where] of [
        ['BOLT', 'two', 'Wrong number format!', 402], ['BOLT', '-1', 'Quantity must be positive.', 402],
        ['WASHER', '1', 'There is no item WASHER.', 401]]) {
        await page.fill(control(401), code);
        await page.fill(control(402), quantity);
        await pressOk(page);
        await page.waitForFunction((text) => document.getElementById('invalidTag')?.innerText.includes(text), message);
        assert.equal(await page.$eval('[aria-invalid]', (field) => Number(field.id)), where);
    }
    await page.fill(control(401), 'BOLT');
    await page.fill(control(402), '2');
    await page.click('text=Another line');
    await page.fill(control(407), 'NUT');
    await page.fill(control(408), '0.125');
    await pressOkTo(page, 'itemlist');
    assert.equal(shop.record('Items/3.dat').BillOfMaterials, '"BOLT/2.00","NUT/0.125",');
    const kit = (await listRows(page)).find((row) => row[0] === 'KIT');
    assert.deepEqual(kit.slice(7, 9), ['Main', '5.00']);
    // What is shown is saved as it was.
    await page.goto(shop.url + 'itembomprop?id=3');
    await pressOkTo(page, 'itemlist');
    assert.equal(shop.record('Items/3.dat').BillOfMaterials, '"BOLT/2.00","NUT/0.125",');
    // A bill that leads back is refused.
    await page.goto(shop.url + 'itembomprop?id=1');
    await page.fill(control(401), 'KIT');
    await page.fill(control(402), '1');
    await pressOk(page);
    assert.match((await fieldError(page)).message, /Item KIT cannot be a component because it is itself built/);
}

async function transferRound(page, shop, shots) {
    await page.goto(shop.url + 'main');
    await page.click('text=Transfers');
    await page.click('text=New transfer');
    await pressOk(page);
    assert.deepEqual(await fieldError(page),
        { message: 'Select the location that the stock comes from.', control: 101, focused: true });
    await page.selectOption(control(101), 'Main');
    await page.selectOption(control(102), 'Yard');
    await page.fill(control(LINE), 'KIT');
    await page.fill(control(LINE + 1), '1');
    await page.fill(control(LINE + 2), 'NUT');
    await page.fill(control(LINE + 3), '30');
    await page.selectOption(control(103), 'Requested');
    await page.fill(control(105), 'for <Friday>');
    await pressOkTo(page, 'transferlist');
    const [row] = await listRows(page);
    assert.deepEqual(row.slice(0, 5), ['TRF1', 'Requested', 'Main', 'Yard', '1.00 KIT, 30.00 NUT']);
    await page.click('text=TRF1');
    await page.click('.toolbar >> text=Send');
    assert.match(await page.innerText('body'), /Item NUT: 20\.00 in stock at Main, 30\.12 needed\./);
    if (shots) await page.screenshot({ path: join(shots, 'transfersend-1280.png'), fullPage: true });
    const send = () => page.click('input[name=submit][value=Send]');
    await send();
    await page.waitForSelector('#invalidTag');
    assert.equal(stock(shop, 2), '"1/20.00/0.00/0.00",', 'a refusal moves nothing');
    await page.check(control(104));
    await Promise.all([page.waitForURL(/transferview/), send()]);
    assert.equal(stock(shop, 1), '"1/8.00/0.00/0.00",');
    assert.equal(stock(shop, 2), '"1/-10.12/0.00/0.00",');
    if (shots) await page.screenshot({ path: join(shots, 'transferview-1280.png'), fullPage: true });
    // Two windows receive together.
    await page.goto(shop.url + 'transferreceive?id=TRF1');
    const other = await page.context().newPage();
    await other.goto(shop.url + 'transferreceive?id=TRF1');
    const press = (window) => window.click('input[name=submit][value=Receive]');
    await Promise.all([press(page), press(other)]);
    for (const window of [page, other]) {
        await Promise.race([window.waitForURL(/transferview/), window.waitForSelector('#invalidTag')]);
    }
    await other.close();
    assert.equal(stock(shop, 1), '"1/8.00/0.00/0.00","2/2.00/0.00/0.00",');
    assert.match(stock(shop, 2), /"2\/30\.12\//);
    await page.goto(shop.url + 'transferview?id=TRF1');
    assert.match(await page.innerText('body'), /Received\s+.*by owner@example\.com/);
}

async function moveAtOnceAndCancel(page, shop) {
    await page.goto(shop.url + 'itemlist');
    await page.click('a[aria-label="Move BOLT"] >> nth=0');
    await page.waitForURL(/itemtransfer/);
    assert.deepEqual([await page.inputValue(control(101)), await page.inputValue(control(LINE))], ['Main', 'BOLT']);
    await page.selectOption(control(102), 'Yard');
    await page.fill(control(LINE + 1), '100');
    await pressOk(page);
    await page.waitForSelector('#invalidTag');
    assert.match(await page.innerText('#invalidTag'), /Item BOLT: 8\.00 in stock at Main, 100\.00 needed\./);
    assert.equal(shop.files('Transfers').length, 1, 'nothing is left of it');
    await page.fill(control(LINE + 1), '3');
    await pressOkTo(page, 'itemlist');
    assert.equal(stock(shop, 1), '"1/5.00/0.00/0.00","2/5.00/0.00/0.00",');
    await page.goto(shop.url + 'itemtransfer?id=1&loc=Yard');
    await page.selectOption(control(102), 'Main');
    await page.fill(control(LINE + 1), '4');
    await page.selectOption(control(103), 'Sent');
    await pressOkTo(page, 'itemlist');
    await page.goto(shop.url + 'transfercancel?id=TRF4');
    await page.click('text=/^Yes$/');
    await page.waitForURL(/transferview/);
    assert.match(await page.innerText('body'), /Cancelled/);
    assert.equal(stock(shop, 1), '"1/5.00/0.00/0.00","2/5.00/0.00/0.00",');
    await page.goto(shop.url + 'transfernote?id=TRF4');
    await page.fill(control(101), 'not needed');
    await pressOkTo(page, 'transferview');
    assert.equal(shop.record('Transfers/TRF4.dat').Note, 'not needed');
}

async function deleteHistoryRow(page, shop) {
    await page.goto(shop.url + 'itempurchasesell?type=sell&id=1&loc=Main');
    await page.fill(control(103), '2');
    await page.fill(control(105), 'Smith, "A"');
    await pressOkTo(page, 'itemlist');
    await page.goto(shop.url + 'itemselllist');
    await page.click('button[aria-label="Delete the record of BOLT"]');
    await page.waitForSelector('text=Are you sure you want to delete the selected records?');
    assert.match(stock(shop, 1), /^"1\/3\.00/);
    await page.click('text=/^Yes$/');
    await page.waitForURL(/itemselllist/);
    assert.match(await page.innerText('body'), /Nothing was sold in these days\./);
    assert.match(stock(shop, 1), /^"1\/5\.00/);
}

// A red picture of 400 by 100 pixels.
function png() {
    const chunk = (type, data) => {
        const body = Buffer.concat([Buffer.from(type), data]);
        const ends = Buffer.alloc(8);
        ends.writeUInt32BE(data.length, 0);
        ends.writeUInt32BE(crc(body), 4);
        return Buffer.concat([ends.subarray(0, 4), body, ends.subarray(4)]);
    };
    const head = Buffer.alloc(13);
    head.writeUInt32BE(400, 0);
    head.writeUInt32BE(100, 4);
    head.set([8, 2], 8);
    const row = Buffer.alloc(1201);
    for (let i = 1; i < row.length; i += 3) row[i] = 200;
    return Buffer.concat([Buffer.from('89504e470d0a1a0a', 'hex'), chunk('IHDR', head),
        chunk('IDAT', deflateSync(Buffer.concat(Array(100).fill(row)))), chunk('IEND', Buffer.alloc(0))]);
}

function crc(bytes) {
    let value = ~0;
    for (const byte of bytes) {
        value ^= byte;
        for (let bit = 0; bit < 8; ++bit) value = (value >>> 1) ^ (value & 1 ? 0xEDB88320 : 0);
    }
    return ~value >>> 0;
}

async function picture(page, shop, shots) {
    await page.goto(shop.url + 'itemprop?id=1');
    const choose = (name, buffer) => page.setInputFiles(control(113), { name, mimeType: 'image/png', buffer });
    await choose('page.png', Buffer.from('<html><script>alert(1)</script></html>'));
    await pressOk(page);
    assert.match((await fieldError(page)).message, /^"page\.png" is not a picture that can be read\./);
    await choose('bolt.png', png());
    // Chosen here, saved from another tab.
    await page.click('.navtabs >> text=Inventory');
    await page.waitForURL(/iteminventoryprop/);
    await pressOkTo(page, 'itemlist');
    const file = shop.record('Items/1.dat').ImageFile;
    assert.match(file, /\/Items\/0\w{6}\.bmp$/);
    await page.goto(shop.url + 'itemprop?id=1');
    const size = await page.$eval('img.itempicture', (img) => [img.naturalWidth, img.naturalHeight]);
    assert.deepEqual(size, [120, 30]);
    if (shots) await page.screenshot({ path: join(shots, 'itempicture-1280.png'), fullPage: true });
    await page.check(control(114));
    await pressOkTo(page, 'itemlist');
    assert.equal(shop.record('Items/1.dat').ImageFile || '', '');
    assert.deepEqual(shop.files('Items').filter((name) => name.endsWith('.bmp')), []);
}

async function customerTabs(page, shop) {
    await page.goto(shop.url + 'customerprop');
    await page.fill(control(101), 'Ridgeway');
    await page.click('.navtabs >> text=Other details');
    await page.waitForURL(/customerotherprop/);
    await page.fill(control(121), 'Harbour');
    await page.fill(control(131), 'Rings\ntwice');
    await pressOkTo(page, 'customerlist');
    const [key] = shop.files('Customers').filter((name) => shop.record('Customers/' + name).Name === 'Ridgeway');
    const customer = shop.record('Customers/' + key);
    assert.deepEqual([customer.ShipCity, customer.Notes], ['Harbour', 'Rings\r\ntwice']);
    await page.goto(shop.url + `customerotherprop?id=${key.replace('.dat', '')}`);
    await pressOkTo(page, 'customerlist');
    assert.equal(shop.record('Customers/' + key).Name, 'Ridgeway', 'the tab that was not opened stays');
}

export default async function stockMoves({ test, browser, executable, shots }) {
    const shop = new Shop(executable);
    try {
        await shop.setUp();
        const page = await openWindow(browser);
        await logOn(page, shop);
        await setUpShop(page, shop);
        await test('an item is built of others, and its bill is checked', () => buildItem(page, shop));
        await test('a transfer is asked for, sent and received, once', () => transferRound(page, shop, shots));
        await test('stock is moved at once, and comes back from a cancelled transfer', () => moveAtOnceAndCancel(page, shop));
        await test('a deleted sale gives its quantity back', () => deleteHistoryRow(page, shop));
        await test('a picture is chosen, seen and removed, and what is none refused', () => picture(page, shop, shots));
        await test('a customer is saved with both tabs', () => customerTabs(page, shop));
        await test('the console had nothing to complain about on the way', () => assert.deepEqual(page.complaints, []));
        await page.context().close();
    } finally {
        await shop.tearDown();
    }
}
