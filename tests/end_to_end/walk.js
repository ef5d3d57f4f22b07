// Walks a subtree with the Node.js net-snmp client: a JSON array [OID, type, value] a line.
//
//   node walk.js PORT COMMUNITY ROOT REPETITIONS
const snmp = require("net-snmp");

const [port, community, root, repetitions] = process.argv.slice(2);
const session = snmp.createSession("127.0.0.1", community, {
    port: Number(port), version: snmp.Version2c, timeout: 40000, retries: 0,
});

const names = {
    [snmp.ObjectType.Integer]: "INTEGER",
    [snmp.ObjectType.OctetString]: "OCTET STRING",
    [snmp.ObjectType.Gauge]: "Gauge32",
    [snmp.ObjectType.Counter]: "Counter32",
};

function feed(bindings) {
    for (const binding of bindings) {
        if (snmp.isVarbindError(binding)) {
            throw new Error(snmp.varbindError(binding));
        }
        const type = names[binding.type] || `type ${binding.type}`;
        const value = Buffer.isBuffer(binding.value) ? binding.value.toString("hex") : String(binding.value);
        console.log(JSON.stringify([binding.oid, type, value]));
    }
}

session.subtree(root, Number(repetitions), feed, (error) => {
    session.close();
    if (error) {
        console.error(String(error));
        process.exitCode = 1;
    }
});
