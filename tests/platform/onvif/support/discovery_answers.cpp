#include "tests/platform/onvif/support/discovery_answers.h"

std::string discoveryAnswer(const std::string &kind, const std::string &relatesTo,
                            const std::vector<AnnouncedDevice> &devices)
{
    const std::string match = kind.substr(0, kind.size() - 2);
    std::string text =
        R"(<?xml version="1.0" encoding="UTF-8"?>)"
        R"(<SOAP-ENV:Envelope xmlns:SOAP-ENV="http://www.w3.org/2003/05/soap-envelope")"
        R"( xmlns:wsa="http://schemas.xmlsoap.org/ws/2004/08/addressing")"
        R"( xmlns:wsdd="http://schemas.xmlsoap.org/ws/2005/04/discovery")"
        R"( xmlns:tds="http://www.onvif.org/ver10/device/wsdl")"
        R"( xmlns:dn="http://www.onvif.org/ver10/network/wsdl"><SOAP-ENV:Header>)"
        "<wsa:MessageID>urn:uuid:00000000-0000-4000-8000-000000000001</wsa:MessageID>"
        "<wsa:RelatesTo>" +
        relatesTo +
        "</wsa:RelatesTo>"
        "<wsa:To>http://schemas.xmlsoap.org/ws/2004/08/addressing/role/anonymous</wsa:To>"
        "<wsa:Action>http://schemas.xmlsoap.org/ws/2005/04/discovery/" +
        kind + "</wsa:Action></SOAP-ENV:Header><SOAP-ENV:Body><wsdd:" + kind + '>';
    for (const AnnouncedDevice &device : devices) {
        text += "<wsdd:" + match + "><wsa:EndpointReference><wsa:Address>" + device.endpoint +
                "</wsa:Address></wsa:EndpointReference><wsdd:Types>" + device.types +
                "</wsdd:Types><wsdd:Scopes>" + device.scopes + "</wsdd:Scopes><wsdd:XAddrs>" +
                device.xaddrs +
                "</wsdd:XAddrs><wsdd:MetadataVersion>1</wsdd:MetadataVersion></wsdd:" + match + '>';
    }
    return text + "</wsdd:" + kind + "></SOAP-ENV:Body></SOAP-ENV:Envelope>";
}

std::string messageIdOf(const std::string &datagram)
{
    const std::string open = "<a:MessageID>";
    const std::size_t start = datagram.find(open) + open.size();
    return datagram.substr(start, datagram.find('<', start) - start);
}
