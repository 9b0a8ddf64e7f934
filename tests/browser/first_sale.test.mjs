// The way of a first day: log on, add an item at two locations, receive, sell, find it all again
// after a restart of the service. Later tests go on with what earlier ones made.
import assert from 'node:assert/strict';
import { EMAIL, PASSWORD, Shop, control, fieldError, listRows, logOn, openWindow, pressOk, pressOkTo } from './harness.mjs';

const today = new Date().toISOString().slice(0, 10);

async function submitLogon(page, email, password) {
    await page.fill(control(101), email);
    await page.fill(control(102), password);
    await pressOk(page);
}

async function wrongLogons(page, shop) {
    const cases = [
        ['', 'x', 101, 'Please enter your email address.'],
        ['nobody', 'x', 101, 'Please enter a valid email address.'],
        [EMAIL, 'wrong', 102, 'Login failed. Please check you have the right password.'],
        [EMAIL, PASSWORD.toUpperCase(), 102, 'Login failed. Please check you have the right password.'],
    ];
    for (const [email, password, id, message] of cases) {
        await page.goto(shop.url + 'logon');
        await submitLogon(page, email, password);
        assert.deepEqual(await fieldError(page), { message, control: id, focused: true });
    }
}

async function addLocation(page, shop) {
    await page.goto(shop.url + 'loclist');
    await page.click('text=New location');
    await pressOk(page);
    assert.equal((await fieldError(page)).message, 'Please enter the location name.');
    await page.fill(control(101), 'Stockroom');
    await page.fill(control(102), '2 Back Lane\nTown');
    await pressOkTo(page, 'loclist');
    assert.deepEqual((await listRows(page)).map((row) => row[0]), ['Main', 'Stockroom']);
}

async function addItem(page, shop) {
    await page.goto(shop.url + 'itemlist');
    await page.click('text=New item');
    await pressOk(page);
    assert.deepEqual(await fieldError(page),
        { message: 'Enter an item code. It is usually just a few letters.', control: 101, focused: true });
    await page.fill(control(101), 'BOLT-8');
    await pressOk(page);
    await page.waitForFunction(() => document.getElementById('invalidTag')?.innerText.includes('currency'));
    assert.deepEqual(await fieldError(page), {
        message: 'Enter a proper currency value. For description only (non charge items) enter 0.',
        control: 105, focused: true });
    await page.fill(control(102), 'Bolt <M8> & "nut"');
    await page.fill(control(103), 'Fasteners');
    await page.fill(control(104), 'Bolts');
    await page.fill(control(105), '0.20');
    await page.fill(control(106), '1,000.55');
    await page.fill(control(108), 'each');

    await page.click('text=Inventory');
    await page.waitForURL(/iteminventoryprop/);
    await page.fill(control(201), 'Bolt Works');
    await page.fill(control(1000), 'ten');
    await pressOk(page);
    assert.deepEqual(await fieldError(page), { message: 'Wrong number format!', control: 1000, focused: true });
    await page.fill(control(1000), '10');
    await page.fill(control(1001), '20');
    await page.fill(control(1002), '12');
    await page.fill(control(1010), '2.5');
    await pressOkTo(page, 'itemlist');
    const rows = await listRows(page);
    assert.equal(rows.length, 2);
    assert.deepEqual(rows[0].slice(0, 11), ['BOLT-8', 'Bolt <M8> & "nut"', 'Fasteners', 'Default', '$0.20',
        '$1,000.55', 'each', 'Main', '10.00', '12.00', '20.00']);
    assert.deepEqual(rows[1].slice(7, 11), ['Stockroom', '2.50', '0.00', '0.00']);
}

async function duplicateCode(page, shop) {
    await page.goto(shop.url + 'itemprop');
    for (const [id, text] of [[101, 'bolt-8'], [103, 'Fasteners'], [105, '1'], [106, '2']]) {
        await page.fill(control(id), text);
    }
    await pressOk(page);
    assert.deepEqual(await fieldError(page),
        { message: 'An item with the same code already exists.', control: 101, focused: true });
}

async function receiveAndSell(page, shop) {
    await page.goto(shop.url + 'itemlist');
    await page.click('a[aria-label="Receive BOLT-8"] >> nth=0');
    await page.waitForURL(/itempurchasesell/);
    await page.fill(control(103), '0');
    await pressOk(page);
    assert.equal((await fieldError(page)).message, 'Enter a quantity greater than 0.');
    await page.fill(control(103), '25');
    await page.fill(control(104), '0.18');
    await page.fill(control(108), 'Delivery 7, "urgent"');
    await pressOkTo(page, 'itemlist');

    await page.click('a[aria-label="Sell BOLT-8"] >> nth=0');
    await page.waitForURL(/itempurchasesell/);
    await page.fill(control(103), '3');
    await pressOk(page);
    assert.match((await fieldError(page)).message, /The customer field was left blank\./);
    await page.fill(control(105), 'Ridgeway Builders');
    await pressOkTo(page, 'itemlist');
    await seeTheNumbers(page, shop);
}

async function seeTheNumbers(page, shop) {
    await page.goto(shop.url + 'itemlist');
    const rows = await listRows(page);
    assert.deepEqual(rows.map((row) => [row[7], row[8]]), [['Main', '32.00'], ['Stockroom', '2.50']]);
    await page.goto(shop.url + 'itemreceivelist');
    const received = await listRows(page);
    assert.equal(received.length, 1);
    assert.deepEqual(received[0].slice(1, 9), ['BOLT-8', 'Bolt <M8> & "nut"', '25.00', '$0.18', '$4.50', 'Main',
        'Bolt Works', 'Delivery 7, "urgent"']);
    await page.goto(shop.url + 'itemselllist');
    const sold = await listRows(page);
    assert.equal(sold.length, 1);
    assert.deepEqual(sold[0].slice(1, 9), ['BOLT-8', 'Bolt <M8> & "nut"', '3.00', '$1,000.55', '$3,001.65', 'Main',
        'Ridgeway Builders', '']);
}

async function theFilesOnDisk(page, shop) {
    assert.deepEqual(shop.files('Items'), ['1.dat']);
    const item = shop.record('Items/1.dat');
    assert.equal(item.Name, 'BOLT-8');
    assert.equal(item.Value, '20');
    assert.equal(item.Price, '100055');
    assert.equal(item.LocationsAndQuantities, '"1/32.00/12.00/20.00","2/2.50/0.00/0.00",');
    assert.equal(item.Quantity, '34.500000');
    assert.equal(shop.record(`Categories/${item.Category}.dat`).Name, 'Fasteners');
    assert.equal(shop.record('Suppliers/1.dat').Name, 'Bolt Works');
    assert.equal(shop.record('Customers/1.dat').Name, 'Ridgeway Builders');
    assert.equal(shop.file(`ReceiveHistory/${today}.csv`),
        '25.00,1,$0.18,Main,Bolt Works,,$4.50,"Delivery 7, ""urgent"""\r\n');
    assert.equal(shop.file(`Sellhistory/${today}.csv`),
        '3.00,1,"$1,000.55",Main,Ridgeway Builders,"$3,001.65",\r\n');
}

async function pressedTwice(page, shop) {
    await page.goto(shop.url + 'itempurchasesell?type=sell&id=1&loc=Main');
    await page.fill(control(103), '1');
    await page.fill(control(105), 'Ridgeway Builders');
    const answers = await page.evaluate(async () => {
        const body = new URLSearchParams(new FormData(document.getElementById('dialogform')));
        body.set('submit', '  OK  ');
        const post = () => fetch('itempurchasesell', { method: 'POST', body }).then((answer) => answer.text());
        return Promise.all([post(), post(), post()]);
    });
    assert.equal(answers.filter((text) => text.includes('window.location')).length, 1, answers.join('\n'));
    assert.match(shop.record('Items/1.dat').LocationsAndQuantities, /^"1\/31\.00\//);
    assert.equal(shop.file(`Sellhistory/${today}.csv`).split('\r\n').length, 3);
}

async function restart(page, shop) {
    assert.equal(await shop.stop(), 0, shop.log);
    await shop.start();
    await page.goto(shop.url + 'itemlist');
    assert.deepEqual((await listRows(page)).map((row) => row[8]), ['31.00', '2.50']);
}

async function openForms(page, shop) {
    // A sale made while the item form is open is not undone by its OK.
    await page.goto(shop.url + 'iteminventoryprop?id=1');
    await page.fill(control(202), 'BW-8');
    const sale = await openWindow(page.context().browser());
    await logOn(sale, shop);
    await sale.goto(shop.url + 'itempurchasesell?type=sell&id=1&loc=Main');
    await sale.fill(control(103), '5');
    await sale.check(control(106));
    await pressOkTo(sale, 'itemlist');
    await sale.context().close();
    await pressOkTo(page, 'itemlist');
    assert.deepEqual((await listRows(page)).map((row) => row[8]), ['26.00', '2.50']);
    assert.equal(shop.record('Items/1.dat').SupplierID, 'BW-8');
}

async function deleteRows(page, shop) {
    await page.goto(shop.url + 'itemlist');
    await page.click('a[aria-label="Delete BOLT-8"] >> nth=1');
    await page.waitForSelector('text=Are you sure you want to delete the selected item(s)?');
    assert.equal(shop.record('Items/1.dat').Quantity, '28.500000', 'asking deletes nothing');
    await page.click('text=/^Delete$|^Yes$/');
    await page.waitForURL(/itemlist/);
    assert.deepEqual((await listRows(page)).map((row) => row[7]), ['Main']);
    await page.click('a[aria-label="Delete BOLT-8"]');
    await page.click('text=/^Delete$|^Yes$/');
    await page.waitForSelector('text=Item BOLT-8 cannot be deleted because it is referenced in a transaction.');
}

async function logOff(page, shop) {
    await page.goto(shop.url + 'main');
    await page.click('text=Log Off');
    await page.waitForSelector('text=You have successfully logged out.');
    await page.goto(shop.url + 'itemlist');
    assert.equal(new URL(page.url()).pathname, '/logon');
    assert.equal(shop.files('SessionData').length, 1, 'only the other window\'s session is left');
}

export default async function firstSale({ test, browser, executable }) {
    const shop = new Shop(executable);
    try {
        await shop.setUp();
        const page = await openWindow(browser);
        await test('a wrong logon shows its message beside the field', () => wrongLogons(page, shop));
        await test('a logon by keyboard alone leads to the main page', async () => {
            await page.goto(shop.url);
            assert.equal(new URL(page.url()).pathname, '/logon');
            await page.waitForFunction(() => document.activeElement?.id === '101');
            await page.keyboard.type(EMAIL);
            await page.keyboard.press('Tab');
            await page.keyboard.type(PASSWORD);
            await page.keyboard.press('Enter');
            await page.waitForURL(/\/main$/);
        });
        await test('a location is added', () => addLocation(page, shop));
        await test('an item with stock at two locations is added', () => addItem(page, shop));
        await test('a code in other letter case is a duplicate', () => duplicateCode(page, shop));
        await test('25 received and 3 sold are seen in the list and both histories', () => receiveAndSell(page, shop));
        await test('the record and the history rows on disk are to the byte', () => theFilesOnDisk(page, shop));
        await test('a sale that is sent three times at once is made once', () => pressedTwice(page, shop));
        await test('after a restart all is there again, the session too', () => restart(page, shop));
        await test('a sale made while the item form was open stays', () => openForms(page, shop));
        await test('deleting asks, takes one location, and refuses what the history names', () => deleteRows(page, shop));
        await test('after logging off no page is shown', () => logOff(page, shop));
        await test('the console had nothing to complain about', () => assert.deepEqual(page.complaints, []));
        await page.context().close();
    } finally {
        await shop.tearDown();
    }
}
