"""Descriptions of the newest version, as its publisher puts them on a server: PAD files."""

from dataclasses import dataclass
from xml.sax.saxutils import escape, quoteattr

NAMESPACE = "https://example.org/zolvane/messages"


@dataclass
class Message:
    """For one version or system only, where these are given."""

    text: str
    version: str = None
    system: str = None


@dataclass
class Description:
    version: str = "5.4"
    date: tuple = (2026, 12, 1)
    name: str = "Zolvane"
    author: tuple = ("Ada", "Quill")
    download: str = ""
    messages: tuple = ()

    def xml(self):
        year, month, day = self.date
        first, last = (escape(name) for name in self.author)
        return f"""<?xml version="1.0" encoding="UTF-8"?>
<XML_DIZ_INFO>
  <MASTER_PAD_VERSION_INFO>
    <MASTER_PAD_VERSION>4.0</MASTER_PAD_VERSION>
  </MASTER_PAD_VERSION_INFO>
  <Company_Info>
    <Company_Name>Quillmere</Company_Name>
    <Company_WebSite_URL>https://example.org/</Company_WebSite_URL>
    <Contact_Info>
      <Author_First_Name>{first}</Author_First_Name>
      <Author_Last_Name>{last}</Author_Last_Name>
      <Author_Email>ada@example.org</Author_Email>
    </Contact_Info>
  </Company_Info>
  <Program_Info>
    <Program_Name>{escape(self.name)}</Program_Name>
    <Program_Version>{escape(self.version)}</Program_Version>
    <Program_Release_Year>{year:04}</Program_Release_Year>
    <Program_Release_Month>{month:02}</Program_Release_Month>
    <Program_Release_Day>{day:02}</Program_Release_Day>
    <File_Info>
      <File_Size_Bytes>1048576</File_Size_Bytes>
    </File_Info>
  </Program_Info>
  <Web_Info>
    <Download_URLs>
      <Primary_Download_URL>{escape(self.download)}</Primary_Download_URL>
    </Download_URLs>
  </Web_Info>
{self._extension()}</XML_DIZ_INFO>
""".encode()

    def _extension(self):
        if not self.messages:
            return ""
        lines = [f"    <qm:msg{_attribute('version', message.version)}"
                 f"{_attribute('id', message.system)}>{escape(message.text)}</qm:msg>\n"
                 for message in self.messages]
        return f"  <qm:messages xmlns:qm={NAMESPACE!r}>\n{''.join(lines)}  </qm:messages>\n"


def _attribute(name, value):
    return "" if value is None else f" {name}={quoteattr(value)}"
