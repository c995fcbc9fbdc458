-- Where the inventories of a fleet are kept. Made for PostgreSQL 15 and later.
--
-- A line of an export waits in inbox until its pass is complete. fold_passes() then works the pass
-- into the history, which has a row only where something has changed.

CREATE FUNCTION moment(text) RETURNS timestamptz LANGUAGE sql IMMUTABLE STRICT
  -- Immutable, as passes are stamped in UTC and say so.
  AS $$ SELECT $1::timestamptz $$;

CREATE TABLE inbox (
  line jsonb NOT NULL,
  received timestamptz NOT NULL DEFAULT now(),
  host text NOT NULL GENERATED ALWAYS AS (line->>'hostName') STORED,
  pass timestamptz NOT NULL GENERATED ALWAYS AS (moment(line->>'passTime')) STORED,
  root int NOT NULL GENERATED ALWAYS AS ((line->>'HKEY_ROOT')::int) STORED,
  key text NOT NULL GENERATED ALWAYS AS (line->>'keyName') STORED,
  PRIMARY KEY (host, pass, root, key)
);

-- Lines that are none of an export.
CREATE TABLE rejected (
  line text NOT NULL,
  reason text NOT NULL,
  received timestamptz NOT NULL DEFAULT now()
);

CREATE TABLE intake (repeated bigint NOT NULL);
INSERT INTO intake VALUES (0);

-- Takes one line. A shipper sends a line again rather than lose it, so a second one is no error;
-- and none may fail, as the shipper would try the same line for ever.
CREATE FUNCTION take_line(arrived text) RETURNS void LANGUAGE plpgsql AS $$
BEGIN
  INSERT INTO inbox (line) VALUES (arrived::jsonb) ON CONFLICT DO NOTHING;
  IF NOT FOUND THEN
    UPDATE intake SET repeated = repeated + 1;
  END IF;
EXCEPTION WHEN data_exception OR integrity_constraint_violation OR program_limit_exceeded THEN
  INSERT INTO rejected (line, reason) VALUES (arrived, SQLERRM);
END $$;

CREATE TABLE machine (
  id int GENERATED ALWAYS AS IDENTITY PRIMARY KEY,
  name text NOT NULL UNIQUE,
  first_pass timestamptz NOT NULL,
  last_pass timestamptz NOT NULL
);

-- Each version of each program once, on however many machines it is.
CREATE TABLE package (
  id int GENERATED ALWAYS AS IDENTITY PRIMARY KEY,
  name text NOT NULL,
  version text NOT NULL,
  publisher text NOT NULL,
  source text NOT NULL,
  UNIQUE (name, version, publisher, source)
);

-- From the pass that first found a package on a machine to the one that first missed it.
-- Only fold_passes() writes here; foreign keys would double its time.
CREATE TABLE installed (
  machine int NOT NULL,
  package int NOT NULL,
  since timestamptz NOT NULL,
  until timestamptz,
  install_date text,
  size_kb numeric
);
CREATE UNIQUE INDEX installed_now ON installed (machine, package) WHERE until IS NULL;
CREATE INDEX installed_where ON installed (package) WHERE until IS NULL;
CREATE INDEX installed_since ON installed (since);
CREATE INDEX installed_until ON installed (until) WHERE until IS NOT NULL;

-- Folds of each machine its oldest pass, once no line of it has come for a while. Says how many.
CREATE FUNCTION fold_oldest_passes(settled interval) RETURNS bigint LANGUAGE plpgsql AS $$
DECLARE
  folded bigint;
BEGIN
  DROP TABLE IF EXISTS due, present;
  CREATE TEMP TABLE due AS
    SELECT host, pass, lines, false AS newer, false AS stale, 0 AS machine
    FROM (SELECT DISTINCT ON (host) host, pass, count(*) AS lines, max(received) AS received
          FROM inbox GROUP BY host, pass ORDER BY host, pass) AS oldest
    WHERE received <= clock_timestamp() - settled;
  SELECT count(*) INTO folded FROM due;

  INSERT INTO machine (name, first_pass, last_pass)
    SELECT host, pass, pass FROM due ON CONFLICT (name) DO NOTHING;
  UPDATE due SET machine = m.id, newer = due.pass > m.last_pass, stale = due.pass < m.last_pass
    FROM machine m WHERE m.name = due.host;
  ANALYZE due;

  CREATE TEMP TABLE present AS
    SELECT due.machine, due.pass, 0 AS package,
           coalesce(line->>'displayName', '') AS name,
           coalesce(line->>'displayVersion', '') AS version,
           coalesce(line->>'publisher', '') AS publisher,
           coalesce(line->>'source', '') AS source,
           line->>'installDate' AS install_date,
           CASE jsonb_typeof(line->'size') WHEN 'number' THEN (line->'size')::numeric END AS size_kb
    FROM inbox JOIN due USING (host, pass) WHERE NOT due.stale;
  INSERT INTO package (name, version, publisher, source)
    SELECT DISTINCT name, version, publisher, source FROM present ON CONFLICT DO NOTHING;
  ANALYZE present, package;
  CREATE TEMP TABLE known AS
    SELECT DISTINCT ON (machine, package)
           machine, p.id AS package, pass, install_date, size_kb
    FROM present JOIN package p USING (name, version, publisher, source)
    ORDER BY machine, package, install_date DESC NULLS LAST, size_kb;
  DROP TABLE present;
  ALTER TABLE known RENAME TO present;
  ANALYZE present;

  UPDATE installed i SET until = due.pass FROM due
    WHERE due.machine = i.machine AND due.newer AND i.until IS NULL
      AND NOT EXISTS (SELECT FROM present p
                      WHERE p.machine = i.machine AND p.package = i.package);
  -- Lines that come late: their packages were taken for removed by the pass that they belong to.
  UPDATE installed i SET until = NULL FROM present p
    WHERE i.machine = p.machine AND i.package = p.package AND i.until = p.pass;
  INSERT INTO installed (machine, package, since, install_date, size_kb)
    SELECT machine, package, pass, install_date, size_kb FROM present p
    WHERE NOT EXISTS (SELECT FROM installed i
                      WHERE i.machine = p.machine AND i.package = p.package AND i.until IS NULL);

  UPDATE machine m SET last_pass = due.pass FROM due WHERE m.id = due.machine AND due.newer;
  DELETE FROM inbox USING due WHERE inbox.host = due.host AND inbox.pass = due.pass;
  RETURN folded;
END $$;

-- Folds all passes that are complete, each machine's in their order. Says how many.
CREATE FUNCTION fold_passes(settled interval DEFAULT '5 minutes') RETURNS bigint
LANGUAGE plpgsql AS $$
DECLARE
  folded bigint;
  sum bigint := 0;
BEGIN
  SET LOCAL client_min_messages = warning;
  LOOP
    folded := fold_oldest_passes(settled);
    EXIT WHEN folded = 0;
    sum := sum + folded;
  END LOOP;
  RETURN sum;
END $$;
