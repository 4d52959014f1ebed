// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What `tarnvod export` writes is read by libraries of others. Folders come from the environment: TARNVOD_BUILD is the build,
// TARNVOD_RECORDINGS the recordings.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';
import { DuckDBInstance } from '@duckdb/node-api';
import { McapIndexedReader, McapStreamReader } from '@mcap/core';
import { delimited, float, long, number } from './protobuf.js';

const { TARNVOD_BUILD: build, TARNVOD_RECORDINGS: recordings } = process.env;
const street = join(recordings, 'street');
const work = mkdtempSync(join(tmpdir(), 'tarnvod-exports-'));
after(() => rmSync(work, { recursive: true }));

const tarnvod = (...words) => execFileSync(join(build, 'tools/tarnvod/tarnvod'), words, { encoding: 'utf8' });

function exported(recording, format, ...words) {
  const file = join(work, `${format}-${Math.random()}`);
  tarnvod('export', recording, '--format', format, '--output', file, ...words);
  return file;
}

/** The messages of a file of scenes, as they are in it. */
function scenesOf(recording) {
  const bytes = readFileSync(join(recording, 'scenes.pb'));
  const scenes = [];
  for (let at = 0; at < bytes.length; ) {
    let length = 0;
    for (let shift = 0; ; shift += 7) {
      length |= (bytes[at] & 127) << shift;
      if (bytes[at++] < 128) {
        break;
      }
    }
    scenes.push(bytes.subarray(at, at + length));
    at += length;
  }
  return scenes;
}

/** A recording of one scene, with names that mean something in CSV. */
function strangeRecording() {
  const folder = join(work, 'strange');
  const name = 'a "b", c\nd';
  const detector = Buffer.concat([long(1, number(1, 7), long(2, name)), long(2, number(1, 3), long(2, 'x,y'))]);
  const detection = [float(1, 0.1), float(2, 0.25), float(3, 1e-7), float(4, 12345678), number(5, 4294967295), number(6, 7), number(7, 80)];
  mkdirSync(folder);
  writeFileSync(join(folder, 'detector-information.pb'), detector);
  writeFileSync(join(folder, 'scenes.pb'), delimited(Buffer.concat([number(1, 5), long(2, ...detection)])));
  return { folder, name };
}

describe('MCAP', () => {
  let bytes;
  let reader;

  before(async () => {
    bytes = readFileSync(exported(street, 'mcap'));
    const readable = {
      size: async () => BigInt(bytes.length),
      read: async (offset, length) => bytes.subarray(Number(offset), Number(offset + length)),
    };
    reader = await McapIndexedReader.Initialize({ readable });
  });

  const messagesOf = async (topic) => {
    const messages = [];
    for await (const message of reader.readMessages({ topics: [topic], validateCrcs: true })) {
      messages.push(message);
    }
    return messages;
  };

  test('has the scenes byte for byte, in order', async () => {
    const messages = await messagesOf('/scenes');
    const scenes = scenesOf(street);
    assert.equal(messages.length, scenes.length);
    messages.forEach((message, at) => assert.ok(scenes[at].equals(Buffer.from(message.data)), `scene ${at}`));
    messages.forEach((message, at) => assert.equal(message.sequence, at + 1));
  });

  test('has the detector information once', async () => {
    const [message, ...others] = await messagesOf('/detector-information');
    assert.equal(others.length, 0);
    assert.ok(readFileSync(join(street, 'detector-information.pb')).equals(Buffer.from(message.data)));
  });

  test('has a Protocol Buffers schema for each channel', () => {
    const schemas = [...reader.channelsById.values()].map(({ topic, messageEncoding, schemaId }) => {
      const { name, encoding, data } = reader.schemasById.get(schemaId);
      assert.ok(Buffer.from(data).includes('object_classes'));
      return [topic, messageEncoding, name, encoding];
    });
    assert.deepEqual(schemas, [
      ['/scenes', 'protobuf', 'VOD.Scene', 'protobuf'],
      ['/detector-information', 'protobuf', 'VOD.DetectorInformation', 'protobuf'],
    ]);
  });

  test('has statistics that agree with its messages', () => {
    assert.equal(reader.statistics.messageCount, 796n);
    assert.deepEqual([...reader.statistics.channelMessageCounts.values()], [795n, 1n]);
    assert.equal(reader.statistics.chunkCount, reader.chunkIndexes.length);
  });

  test('is sound from its first to its last byte, without its index', () => {
    const stream = new McapStreamReader({ validateCrcs: true });
    stream.append(bytes);
    let messages = 0;
    for (let record = stream.nextRecord(); record; record = stream.nextRecord()) {
      messages += record.type === 'Message' ? 1 : 0;
    }
    assert.ok(stream.done());
    assert.equal(messages, 796);
  });
});

describe('tables', () => {
  let connection;
  let summary;

  before(async () => {
    connection = await (await DuckDBInstance.create(':memory:')).connect();
    summary = JSON.parse(tarnvod('inspect', street, '--json'));
  });
  after(() => connection.closeSync());

  const rows = async (query) => (await connection.runAndReadAll(query)).getRowObjectsJson();

  test('CSV has the columns and types that the guide names', async () => {
    const csv = exported(street, 'csv');
    const columns = await rows(`DESCRIBE SELECT * FROM read_csv('${csv}')`);
    assert.deepEqual(columns.map(({ column_name: name }) => name), [
      'frame', 'timestamp', 'arrival', 'objectId', 'className', 'score', 'status', 'coord1', 'coord2', 'coord3', 'coord4',
      'attributes', 'classifications', 'event', 'objectIds',
    ]);
    const types = Object.fromEntries(columns.map(({ column_name: name, column_type: type }) => [name, type]));
    assert.deepEqual([types.frame, types.timestamp, types.score, types.coord1, types.className],
      ['BIGINT', 'BIGINT', 'BIGINT', 'DOUBLE', 'VARCHAR']);
  });

  test('CSV has a row for each detection and each event', async () => {
    const csv = exported(street, 'csv');
    const [{ detections, objects, deleted, connected, frames }] = await rows(`
      SELECT count(*) FILTER (event IS NULL) AS detections, count(DISTINCT objectId) FILTER (event IS NULL) AS objects,
        count(*) FILTER (event = 'Delete') AS deleted, count(*) FILTER (event = 'Connect') AS connected, max(frame) AS frames
      FROM read_csv('${csv}')`);
    assert.deepEqual([detections, objects, deleted, connected, frames].map(Number), [
      summary.detectionsByClass.human, summary.objects.length, summary.events.Delete, summary.events.Connect, summary.frames,
    ]);
  });

  test('CSV keeps commas, quotation marks, line ends and the digits of numbers', async () => {
    const { folder, name } = strangeRecording();
    const [row, ...others] = await rows(`SELECT * FROM read_csv('${exported(folder, 'csv')}')`);
    assert.equal(others.length, 0);
    assert.equal(row.className, name);
    assert.deepEqual([row.objectId, row.score].map(Number), [4294967295, 80]);
    assert.deepEqual([row.coord1, row.coord2, row.coord3, row.coord4].map(Math.fround), [0.1, 0.25, 1e-7, 12345678].map(Math.fround));
  });

  test('the MOTChallenge text has ten columns and the boxes of CSV in pixels', async () => {
    const mot = exported(street, 'mot', '--size', '768x576');
    const [{ lines, furthest }] = await rows(`
      WITH mot AS (SELECT row_number() OVER () AS line, * FROM read_csv('${mot}', header = false)),
        csv AS (SELECT row_number() OVER () AS line, * FROM read_csv('${exported(street, 'csv')}') WHERE event IS NULL)
      SELECT count(*) AS lines, max(greatest(abs(column2 - coord1 * 768), abs(column5 - (coord4 - coord2) * 576))) AS furthest
      FROM mot JOIN csv USING (line) WHERE column0 = frame AND column1 = objectId AND column9 = -1`);
    assert.equal(Number(lines), summary.detectionsByClass.human);
    assert.ok(furthest <= 0.0051, `${furthest}`);
  });
});
