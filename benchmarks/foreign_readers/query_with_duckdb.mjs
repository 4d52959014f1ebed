// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Prints the number of detections of each class and minute of a CSV file that `tarnvod export` wrote, as JSON, by DuckDB.
// usage: node query_with_duckdb.mjs FILE

import { DuckDBInstance } from '@duckdb/node-api';

const connection = await (await DuckDBInstance.create(':memory:')).connect();
const counts = await connection.runAndReadAll(
  `SELECT className, timestamp // 60000000 AS minute, count(*) FROM read_csv('${process.argv[2]}')
   WHERE className IS NOT NULL GROUP BY ALL ORDER BY ALL`,
);
process.stdout.write(JSON.stringify(counts.getRows().map(([name, ...numbers]) => [name, ...numbers.map(Number)])));
