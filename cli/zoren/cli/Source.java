package zoren.cli;

import com.twelvemonkeys.imageio.stream.ByteArrayImageInputStream;
import java.io.BufferedInputStream;
import java.io.ByteArrayInputStream;
import java.io.IOException;
import java.io.InputStream;
import java.io.SequenceInputStream;
import java.nio.ByteBuffer;
import java.nio.channels.SeekableByteChannel;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.attribute.BasicFileAttributes;
import java.util.Set;
import javax.imageio.stream.ImageInputStream;
import javax.imageio.stream.ImageInputStreamImpl;

/** Where a picture is read from: a file, or what a pipe gave, which is kept in memory. */
final class Source {
    /** The word for standard input or output. */
    static final String STANDARD = "-";

    final String name;
    final Format format;
    final Object fileKey; // null for a pipe
    private final Path path; // null for a pipe
    private final byte[] content; // null for a file

    private Source(String name, Format format, Object fileKey, Path path, byte[] content) {
        this.name = name;
        this.fileKey = fileKey;
        this.format = format;
        this.path = path;
        this.content = content;
    }

    /** Looks at what the path names, and into it as far as is needed to know a picture. */
    static Source of(Path path) throws Failure {
        final boolean standard = Set.of(STANDARD, "/dev/stdin").contains(path.toString());
        if (!standard && !Files.exists(path)) {
            throw new Failure(path, "no such file");
        }
        if (Files.isDirectory(path)) {
            throw new Failure(path, "is a folder, not a picture");
        }
        if (!standard && !Files.isReadable(path)) {
            throw new Failure(path, "permission denied");
        }
        final boolean file = !standard && Files.isRegularFile(path);
        try (InputStream in = standard ? System.in : Files.newInputStream(path)) {
            final byte[] head = in.readNBytes(Format.HEAD_BYTES);
            final Format format = Format.of(head);
            if (format == null) { // before all of an endless device is read
                throw new NoPicture(path);
            }
            return file
                    ? new Source(Names.shown(path), format, fileKey(path), path, null)
                    : new Source(
                            Names.shown(path),
                            format,
                            null,
                            null,
                            new SequenceInputStream(new ByteArrayInputStream(head), in)
                                    .readAllBytes());
        } catch (IOException e) {
            throw new Failure(path, e);
        } catch (OutOfMemoryError e) {
            throw new Failure(path, "is too large for the memory there is");
        }
    }

    /** Returns what tells a file from all others, whatever its names. */
    static Object fileKey(Path file) throws IOException {
        return Files.readAttributes(file, BasicFileAttributes.class).fileKey();
    }

    ImageInputStream open() throws IOException {
        return path == null ? new ByteArrayImageInputStream(content) : new FileInput(path);
    }

    InputStream stream() throws IOException {
        return path == null
                ? new ByteArrayInputStream(content)
                : new BufferedInputStream(Files.newInputStream(path));
    }

    /** The failure of a file that no decoder knows. */
    static final class NoPicture extends Failure {
        private static final long serialVersionUID = 1L;

        NoPicture(Path path) {
            super(path, "is not a picture (PNG, JPEG, WebP, GIF, BMP or TIFF)");
        }
    }

    /** The platform's own streams take a name as a string, which not every name is. */
    private static final class FileInput extends ImageInputStreamImpl {
        private final SeekableByteChannel channel;
        private final byte[] single = new byte[1];

        FileInput(Path path) throws IOException {
            channel = Files.newByteChannel(path);
        }

        @Override
        public int read() throws IOException {
            return read(single, 0, 1) < 0 ? -1 : single[0] & 0xFF;
        }

        @Override
        public int read(byte[] bytes, int offset, int length) throws IOException {
            bitOffset = 0;
            final int count =
                    channel.position(streamPos).read(ByteBuffer.wrap(bytes, offset, length));
            streamPos += Math.max(count, 0);
            return count;
        }

        @Override
        public long length() {
            try {
                return channel.size();
            } catch (IOException e) {
                return -1;
            }
        }

        @Override
        public void close() throws IOException {
            super.close();
            channel.close();
        }
    }
}
