#pragma once

// The events of the bus that the library itself creates or reads: ROW(Name, tag1, tag2, payload, meaning)
//
// The tags and the reference page of the events are made from this table. Hosts and plugins that are compiled
// elsewhere contain the tags and payloads, so a released row never changes. Numbers are little-endian. A counted text
// is a 16-bit length followed by its bytes.
// clang-format off
#define EVENT_TABLE(ROW) \
    ROW(ServerPacket, "P2ME", "RSRV", "the bytes of a packet", "Send it to the game server.") \
    ROW(WebPacket, "P2ME", "RWEB", "the bytes of a packet", "Send it to the web server.") \
    ROW(WebPage, "P2ME", "WLID", "32 bits, a `WebLinks::id`", "Open one of the operator's pages.") \
    ROW(WebAddress, "P2ME", "WLNK", "a text in UTF-8", "Open this address.") \
    ROW(WebTexts, "P2ME", "WEBW", "two counted texts in Latin-1, the second one first", "Open a page that takes two texts.") \
    ROW(LoginDialog, "P2ME", "LGND", "none", "Show the login dialog.") \
    ROW(Cashier, "P2ME", "RQCI", "none", "Ask the game server for the account's balances.") \
    ROW(ShutDown, "P2ME", "RSHD", "none", "End the client.") \
    ROW(DesignerPage, "DESI", "ADDW", "a counted text in UTF-8, the name; the event's widget is the page", "Show a page of the designer.") \
    ROW(LinkEstablished, "M2PE", "SCOE", "16 bits, the host's", "The link to the game server stands; `ConnectionEstablished()`.") \
    ROW(LinkChanged, "M2PE", "SCOC", "32 bits, an `EConnectionState::type`", "The link has changed; `ConnectionStateChanged()`.") \
    ROW(LoginRefused, "M2PE", "LGNF", "a text in UTF-8, up to the first zero byte", "The login was refused; `LoginFailed()`.")
// clang-format on
