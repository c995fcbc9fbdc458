-- Which machines have a version of a program? Variables: program, version.
SELECT machine.name, package.source, installed.since
FROM package
JOIN installed ON installed.package = package.id AND installed.until IS NULL
JOIN machine ON machine.id = installed.machine
WHERE package.name = :'program' AND package.version = :'version'
ORDER BY machine.name, package.source;
