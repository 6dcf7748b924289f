package zoren.cli;

import static java.awt.image.BufferedImage.*;
import static org.junit.jupiter.api.Assertions.*;
import static org.junit.jupiter.api.Assumptions.assumeTrue;

import java.io.IOException;
import java.net.*;
import java.nio.channels.ServerSocketChannel;
import java.nio.file.*;
import java.nio.file.attribute.PosixFilePermissions;
import java.util.*;
import org.junit.jupiter.api.*;
import org.junit.jupiter.api.function.Executable;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.*;

/** How a file is replaced: whole or not at all, and under nobody else's hands. */
class WholeFileTest extends CliTest {
    @BeforeEach
    void makeOne() throws IOException {
        Files.writeString(file("in.xml"), "<new/>");
        Files.writeString(file("old"), "as it was");
    }

    @Test
    void keepsASealedFileToItsOwner() throws IOException {
        final String longest = "n".repeat(255);
        assertEquals(0, run("seal ./in.xml ./" + longest), err);
        assertEquals("rw-------", permissions(longest));
        save(filled(2, 2, TYPE_INT_RGB, 0), "in.png");
        assertEquals(0, run("blur ./in.png ./out.png --radius 0"), err);
        assertEquals(permissions("in.png"), permissions("out.png"), "as of any new file");
    }

    @ParameterizedTest
    @ValueSource(strings = {"rw-rw-rw-", "r--r--r--", "-w-------"})
    void replacesAFileAndKeepsItsPermissions(String permissions) throws IOException {
        Files.createLink(file("second"), file("old")); // its second name keeps what it was
        Files.setPosixFilePermissions(file("old"), PosixFilePermissions.fromString(permissions));
        assertEquals(0, run("seal ./in.xml ./old"), err);
        assertEquals(permissions, permissions("old"));
        final String remark = "zoren: ./old: keeps the permissions it had, " + permissions + "\n";
        assertEquals(permissions.endsWith("------") ? "" : at(remark), err);
        assertEquals(16, Files.size(file("old")));
        assertEquals(9, Files.size(file("second")));
        assertEquals(0, run("seal --mode 640 ./in.xml ./old") + run("seal -m640 ./in.xml ./new"));
        assertEquals("rw-r-----rw-r-----", permissions("old") + permissions("new"));
        assertEquals(2, run("seal --mode 888 ./in.xml ./old"));
    }

    @ParameterizedTest
    @CsvSource({
        // where the target leads to, what is said unless the old file is written
        "./old, ",
        "link, ",
        "sub, exists and is not a regular file",
        "socket, exists and is not a regular file",
        "none, is a symbolic link that leads to nothing",
    })
    void followsTheLinkThatIsTheTarget(String leadsTo, String reason) throws IOException {
        Files.createDirectory(file("sub"));
        Files.createSymbolicLink(file("link"), Path.of("sub/../old"));
        try (ServerSocketChannel socket = ServerSocketChannel.open(StandardProtocolFamily.UNIX)) {
            socket.bind(UnixDomainSocketAddress.of(file("socket"))); // its file stays
        }
        Files.createSymbolicLink(file("target"), Path.of(at(leadsTo)));
        final Set<String> before = names("");
        if (reason == null) {
            assertEquals(0, run("seal ./in.xml ./target"), err);
            assertEquals(16, Files.size(file("old")));
        } else {
            fails("seal ./in.xml ./target", reason);
            assertEquals("as it was", Files.readString(file("old")));
        }
        assertTrue(Files.isSymbolicLink(file("target")) && Files.isSymbolicLink(file("link")));
        assertEquals(before, names(""));
    }

    /** Who may write to the folder must not choose what root overwrites there. */
    @Test
    void followsNoLinkOfAnotherUser() throws IOException {
        Files.createSymbolicLink(file("target"), Path.of("old"));
        try {
            Files.setAttribute(file("target"), "unix:uid", 65534, LinkOption.NOFOLLOW_LINKS);
        } catch (IOException e) {
            assumeTrue(false, "only root gives a link away");
        }
        fails("seal ./in.xml ./target", "is a symbolic link of another user");
        assertEquals("as it was", Files.readString(file("old")));
        Files.setAttribute(file("old"), "unix:uid", 65534);
        assertEquals(0, run("seal ./in.xml ./old"), err);
        assertEquals(65534, Files.getAttribute(file("old"), "unix:uid"), "keeps its owner");
    }

    /** Whoever may write to the folder can lay a link where the temporary file will be. */
    @Test
    void createsOnlyWhatIsNotThere() throws IOException {
        Files.createSymbolicLink(file("link"), file("none"));
        for (final String name : new String[] {"old", "link"}) {
            assertThrows(IOException.class, () -> WholeFile.create(file(name), WholeFile.SHARED));
        }
        assertEquals("as it was", Files.readString(file("old")));
        assertFalse(Files.exists(file("none")));
    }

    /** Looked at while it is there: for whom, and where; gone and nothing changed when it fails. */
    @ParameterizedTest
    @CsvSource({"old, rw-r-----", "new, rw-------"})
    void writesByWayOfATemporaryFile(String target, String expected) throws IOException {
        Files.setPosixFilePermissions(file("old"), PosixFilePermissions.fromString("rw-r-----"));
        final Set<String> before = names("");
        final Set<String> seen = new HashSet<>();
        final WholeFile.Writer writer =
                out -> {
                    final Set<String> now = new HashSet<>(names(""));
                    now.removeAll(before);
                    seen.addAll(now);
                    assertEquals(expected, permissions(now.iterator().next()));
                    out.write(new byte[100000]);
                    throw new IOException("no more");
                };
        final Executable write =
                () -> WholeFile.write(file(target), WholeFile.OWNER_ONLY, writer);
        assertThrows(Failure.class, write);
        assertThrows(Failure.class, write);
        assertEquals(2, seen.size(), "another name each time");
        assertEquals(before, names(""));
        assertEquals("as it was", Files.readString(file("old")));
    }

    private String permissions(String name) throws IOException {
        return PosixFilePermissions.toString(Files.getPosixFilePermissions(file(name)));
    }
}
