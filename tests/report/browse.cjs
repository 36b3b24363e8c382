// browse.cjs [--pictures FOLDER] FILE.html...: opens each page in Chromium as a reader may meet it,
// light, dark, 400 pixels wide and on paper, and prints what is not as it should be: a violation that
// axe finds, a script that ran or could, a request, something wider than the screen.
'use strict';

const fs = require('fs');
const path = require('path');
const {pathToFileURL} = require('url');
const puppeteer = require('puppeteer-core');

const axe = fs.readFileSync(require.resolve('axe-core/axe.min.js'), 'utf8');

const views = [
    {name: 'light', width: 1100, scheme: 'light', media: 'screen'},
    {name: 'dark', width: 1100, scheme: 'dark', media: 'screen'},
    {name: 'narrow', width: 400, scheme: 'light', media: 'screen'},
    {name: 'narrow-dark', width: 400, scheme: 'dark', media: 'screen'},
    {name: 'paper', width: 720, scheme: 'dark', media: 'print'},
];

// What must hold of the page's tree, whatever a hostile text tried.
function inspect() {
    const faults = [];
    if (typeof window.ran !== 'undefined') {
        faults.push(`a script ran: ${window.ran}`);
    }
    for (const element of document.querySelectorAll('*')) {
        const tag = element.tagName.toLowerCase();
        if (['script', 'iframe', 'object', 'embed', 'img', 'link', 'base', 'form', 'a'].includes(tag)) {
            faults.push(`<${tag}>`);
        }
        for (const attribute of element.attributes) {
            if (/^on|^style$|href|src/i.test(attribute.name)) {
                faults.push(`<${tag} ${attribute.name}="${attribute.value}">`);
            }
        }
    }
    const wide = document.scrollingElement.scrollWidth - document.documentElement.clientWidth;
    if (wide > 0) {
        faults.push(`${wide} pixels wider than the screen`);
    }
    // Text of a drawing that leaves it would be cut.
    for (const text of document.querySelectorAll('svg text')) {
        if (!(text instanceof SVGTextElement)) {
            faults.push(`<${text.tagName}> is torn out of its picture`);
            continue;
        }
        const box = text.getBBox();
        const view = text.ownerSVGElement.viewBox.baseVal;
        if (box.width > 0 && (box.x < 0 || box.x + box.width > view.width)) {
            faults.push(`leaves its picture: ${text.textContent}`);
        }
    }
    return faults;
}

// What the page has to say to be a report at all.
function describe() {
    return {
        heading: document.querySelectorAll('h1').length,
        pictures: document.querySelectorAll('svg[role=img] > title').length,
        text: document.body.textContent.length,
    };
}

async function look(browser, file, pictures) {
    const faults = [];
    const page = await browser.newPage();
    const say = (view, what) => faults.push(`${path.basename(file)}, ${view}: ${what}`);
    let view = 'loading';
    const address = pathToFileURL(file).href;
    page.on('request', (request) => {
        if (request.url() !== address) {
            say(view, `asks for ${request.url()}`);
        }
    });
    page.on('dialog', async (dialog) => {
        say(view, `a dialogue: ${dialog.message()}`);
        await dialog.dismiss();
    });
    page.on('pageerror', (error) => say(view, error.message));
    page.on('console', (message) => say(view, message.text()));
    const devtools = await page.createCDPSession();
    // The page's own policy would hide what the escaping let through.
    await page.setBypassCSP(true);
    await page.goto(address, {waitUntil: 'load'});
    const has = await page.evaluate(describe);
    if (has.heading !== 1 || has.pictures === 0 || has.text < 500) {
        say(view, `is no report: ${JSON.stringify(has)}`);
    }
    for (const {name, width, scheme, media} of views) {
        view = name;
        await page.setViewport({width, height: 1000});
        // Both at once: either call alone takes back the other.
        await devtools.send('Emulation.setEmulatedMedia',
            {media, features: [{name: 'prefers-color-scheme', value: scheme}]});
        const seen = await page.evaluate(() => [window.innerWidth, matchMedia('print').matches,
            matchMedia('(prefers-color-scheme: dark)').matches].join());
        if (seen !== [width, media === 'print', scheme === 'dark'].join()) {
            say(name, `the browser shows another view: ${seen}`);
        }
        for (const opened of [false, true]) {
            await page.evaluate((open) => document.querySelectorAll('details').forEach(
                (details) => { details.open = open; }), opened);
            (await page.evaluate(inspect)).forEach((fault) => say(name, fault));
            if (pictures && !opened) {
                const stem = path.basename(file, '.html');
                await page.screenshot({path: path.join(pictures, `${stem}.${name}.png`), fullPage: true});
            }
        }
        await page.evaluate(axe);
        const found = await page.evaluate(() => window.axe.run(document, {resultTypes: ['violations']}));
        for (const violation of found.violations) {
            say(name, `${violation.id}: ${violation.help}: ${violation.nodes[0].html}`);
        }
    }
    await page.close();
    return faults;
}

async function main() {
    const files = process.argv.slice(2);
    const pictures = files[0] === '--pictures' ? files.splice(0, 2)[1] : null;
    const browser = await puppeteer.launch({
        executablePath: process.env.CHROMIUM || '/usr/bin/chromium',
        // A container has no namespaces for the sandbox, and the pages are this program's own.
        args: ['--no-sandbox', '--disable-dev-shm-usage', '--hide-scrollbars'],
    });
    const faults = [];
    try {
        for (const file of files) {
            faults.push(...await look(browser, file, pictures));
        }
    } finally {
        await browser.close();
    }
    faults.forEach((fault) => console.log(fault));
    process.exitCode = faults.length === 0 ? 0 : 1;
}

main().catch((error) => {
    console.log(error.stack);
    process.exitCode = 1;
});
