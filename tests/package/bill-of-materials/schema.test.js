// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Run by scripts/test-bills: the bills of the packages, in ./bills, against the published schema of their format.
'use strict';
const assert = require('node:assert');
const { readdirSync, readFileSync } = require('node:fs');
const { describe, it } = require('node:test');
const { Validation } = require('@cyclonedx/cyclonedx-library');

const validator = new Validation.JsonStrictValidator('1.5');
const bills = readdirSync('bills');

describe('The bill of materials', () => {
  it('is in every package', () => assert.strictEqual(bills.length, 4));

  for (const name of bills) {
    it(`of ${name} follows the schema`, async () => {
      assert.strictEqual(await validator.validate(readFileSync(`bills/${name}`, 'utf8')), null);
    });
  }

  it('does not follow it with a member that the schema does not know', async () => {
    const bill = JSON.parse(readFileSync(`bills/${bills[0]}`, 'utf8'));
    bill.components[0].surprise = 1;
    assert.notStrictEqual(await validator.validate(JSON.stringify(bill)), null);
  });
});
