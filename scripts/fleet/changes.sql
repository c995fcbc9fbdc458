-- What has changed since a moment, on each machine? Variable: since.
-- A program that went and came in one pass has changed its version. The packages of a machine's
-- very first pass are no changes.
WITH ended AS (
  SELECT machine, until AS moment, name AS program, version,
         row_number() OVER (PARTITION BY machine, until, name ORDER BY version) AS place
  FROM installed JOIN package ON package.id = installed.package
  WHERE until >= :'since'
), begun AS (
  SELECT machine, since AS moment, package.name AS program, version,
         row_number() OVER (PARTITION BY machine, since, package.name ORDER BY version) AS place
  FROM installed JOIN package ON package.id = installed.package
  JOIN machine ON machine.id = installed.machine
  WHERE since >= :'since' AND since > machine.first_pass
)
SELECT m.name AS machine,
       CASE WHEN begun.machine IS NULL THEN 'removed'
            WHEN ended.machine IS NULL THEN 'added'
            ELSE 'version' END AS change,
       program, ended.version AS before, begun.version AS after
FROM ended FULL JOIN begun USING (machine, moment, program, place)
JOIN machine m ON m.id = machine
ORDER BY m.name, moment, program, place;
