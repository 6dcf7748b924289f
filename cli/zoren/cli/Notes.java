package zoren.cli;

import com.drew.imaging.ImageProcessingException;
import com.drew.imaging.jpeg.JpegSegmentData;
import com.drew.imaging.jpeg.JpegSegmentReader;
import com.drew.imaging.jpeg.JpegSegmentType;
import com.drew.imaging.riff.RiffHandler;
import com.drew.imaging.riff.RiffReader;
import com.drew.lang.StreamReader;
import java.io.ByteArrayInputStream;
import java.io.ByteArrayOutputStream;
import java.io.EOFException;
import java.io.IOException;
import java.io.InputStream;
import java.io.UncheckedIOException;
import java.nio.ByteBuffer;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.zip.CRC32;
import java.util.zip.DeflaterOutputStream;
import java.util.zip.InflaterInputStream;
import javax.imageio.ImageReader;
import javax.imageio.plugins.tiff.BaselineTIFFTagSet;
import javax.imageio.plugins.tiff.TIFFDirectory;
import javax.imageio.plugins.tiff.TIFFField;
import javax.imageio.stream.ImageInputStream;

/**
 * What a file notes of its picture beside the samples: how its colours are meant, how densely its
 * pixels lie, and what EXIF says. Notes that cannot be read are left out.
 */
final class Notes {
    /** What is written where nothing of the file's is to be kept. */
    static final Notes NONE = new Notes();

    private static final int MOST_BYTES = 16 << 20; // of one note; a profile has some thousands
    private static final byte[] JPEG_EXIF = ascii("Exif\0\0");
    private static final byte[] JPEG_PROFILE = ascii("ICC_PROFILE\0");
    private static final int JPEG_SEGMENT_BYTES = 65533; // behind marker and length
    // What PNG says of colours in place of a profile; JPEG has no place for it.
    private static final List<String> PNG_COLORS = List.of("cHRM", "gAMA", "sRGB");

    private final Map<String, byte[]> colors = new LinkedHashMap<>(); // PNG chunks' data
    private byte[] profile;
    private Exif exif;
    private Density density;
    private int orientation = 1;

    private Notes() {}

    static Notes of(Source source, ImageReader reader) {
        final Notes notes = new Notes();
        try {
            switch (source.format) {
                case PNG:
                    notes.readPng(source);
                    break;
                case JPEG:
                    notes.readJpeg(source);
                    break;
                case WEBP:
                    notes.readWebp(source);
                    break;
                case TIFF:
                    notes.readTiff(reader);
                    break;
                default: // the others note nothing of all this
            }
        } catch (IOException | ImageProcessingException | RuntimeException e) {
            // what was read before stays
        }
        if (notes.exif != null) {
            notes.orientation = notes.exif.orientation();
            if (notes.density == null) {
                notes.density = notes.exif.density();
            }
        }
        if (notes.orientation >= 5 && notes.density != null) {
            notes.density = notes.density.turned();
        }
        return notes;
    }

    /** Returns which side of the stored picture is up, as EXIF counts, 1 to 8. */
    int orientation() {
        return orientation;
    }

    /** Leaves out the profile, which was for other samples than those that were decoded. */
    void dropProfile() {
        profile = null;
    }

    private void readPng(Source source) throws IOException {
        try (ImageInputStream in = source.open()) {
            in.seek(8); // behind the signature
            while (true) {
                final int length = in.readInt();
                final String type = new String(bytes(in, 4), StandardCharsets.ISO_8859_1);
                readPngChunk(type, length, in);
            }
        } catch (EOFException e) {
            // all chunks are read
        }
    }

    private void readPngChunk(String type, int length, ImageInputStream in) throws IOException {
        final long end = in.getStreamPosition() + length + 4; // with the checksum
        if (length < 0) {
            throw new EOFException();
        }
        if (length <= MOST_BYTES) {
            if (type.equals("eXIf")) {
                exif = Exif.of(bytes(in, length));
            } else if (type.equals("pHYs") && length == 9) {
                final ByteBuffer data = ByteBuffer.wrap(bytes(in, length));
                density = data.get(8) == 1 ? Density.of(data.getInt(0), data.getInt(4)) : null;
            } else if (type.equals("iCCP")) {
                final byte[] data = bytes(in, length);
                final int name = indexOfZero(data) + 2; // and the method, which can only be zip
                try (InputStream zip =
                        new InflaterInputStream(
                                new ByteArrayInputStream(data, name, length - name))) {
                    profile = rgbProfile(zip.readNBytes(MOST_BYTES));
                }
            } else if (PNG_COLORS.contains(type)) {
                colors.put(type, bytes(in, length));
            }
        }
        in.seek(end);
    }

    private void readJpeg(Source source) throws IOException, ImageProcessingException {
        try (InputStream in = source.stream()) {
            final JpegSegmentData segments =
                    JpegSegmentReader.readSegments(
                            new StreamReader(in),
                            List.of(
                                    JpegSegmentType.APP0,
                                    JpegSegmentType.APP1,
                                    JpegSegmentType.APP2));
            for (final byte[] data : segments.getSegments(JpegSegmentType.APP0)) {
                if (startsWith(data, ascii("JFIF\0")) && data.length >= 12) {
                    final ByteBuffer jfif = ByteBuffer.wrap(data);
                    final int x = jfif.getShort(8) & 0xFFFF;
                    final int y = jfif.getShort(10) & 0xFFFF;
                    if (x > 0 && y > 0 && data[7] > 0) {
                        density =
                                data[7] == 1 ? Density.perInch(x, y) : Density.of(100 * x, 100 * y);
                    }
                    break;
                }
            }
            for (final byte[] data : segments.getSegments(JpegSegmentType.APP1)) {
                if (exif == null && startsWith(data, JPEG_EXIF)) {
                    exif = Exif.of(Arrays.copyOfRange(data, JPEG_EXIF.length, data.length));
                }
            }
            final List<byte[]> parts = new ArrayList<>();
            for (final byte[] data : segments.getSegments(JpegSegmentType.APP2)) {
                if (startsWith(data, JPEG_PROFILE) && data.length > JPEG_PROFILE.length + 2) {
                    parts.add(data);
                }
            }
            parts.sort((a, b) -> (a[JPEG_PROFILE.length] & 0xFF) - (b[JPEG_PROFILE.length] & 0xFF));
            final ByteArrayOutputStream whole = new ByteArrayOutputStream();
            for (final byte[] data : parts) {
                final int start = JPEG_PROFILE.length + 2;
                whole.write(data, start, data.length - start);
            }
            profile = rgbProfile(whole.toByteArray());
        }
    }

    private void readWebp(Source source) throws IOException, ImageProcessingException {
        final Map<String, byte[]> chunks = new LinkedHashMap<>();
        final RiffHandler handler =
                new RiffHandler() {
                    @Override
                    public boolean shouldAcceptRiffIdentifier(String identifier) {
                        return true;
                    }

                    @Override
                    public boolean shouldAcceptChunk(String type) {
                        return type.equals("EXIF"); // by the profile, the plug-in makes it sRGB
                    }

                    @Override
                    public boolean shouldAcceptList(String type) {
                        return false;
                    }

                    @Override
                    public void processChunk(String type, byte[] data) {
                        chunks.put(type, data);
                    }
                };
        try (InputStream in = source.stream()) {
            new RiffReader().processRiff(new StreamReader(in), handler);
        } finally {
            final byte[] block = chunks.get("EXIF");
            exif =
                    block != null && startsWith(block, JPEG_EXIF) // some writers put it there
                            ? Exif.of(Arrays.copyOfRange(block, JPEG_EXIF.length, block.length))
                            : Exif.of(block);
        }
    }

    /** A TIFF file's EXIF entries lie scattered over it, so they are not kept. */
    private void readTiff(ImageReader reader) throws IOException {
        final TIFFDirectory directory =
                TIFFDirectory.createFromMetadata(reader.getImageMetadata(0));
        final TIFFField icc = directory.getTIFFField(BaselineTIFFTagSet.TAG_ICC_PROFILE);
        profile = icc == null ? null : rgbProfile(icc.getAsBytes());
        final TIFFField turn = directory.getTIFFField(BaselineTIFFTagSet.TAG_ORIENTATION);
        if (turn != null && turn.getAsInt(0) >= 1 && turn.getAsInt(0) <= 8) {
            orientation = turn.getAsInt(0);
        }
        final TIFFField x = directory.getTIFFField(BaselineTIFFTagSet.TAG_X_RESOLUTION);
        final TIFFField y = directory.getTIFFField(BaselineTIFFTagSet.TAG_Y_RESOLUTION);
        final TIFFField unit = directory.getTIFFField(BaselineTIFFTagSet.TAG_RESOLUTION_UNIT);
        final int named =
                unit == null ? BaselineTIFFTagSet.RESOLUTION_UNIT_INCH : unit.getAsInt(0);
        if (x != null && y != null && named != BaselineTIFFTagSet.RESOLUTION_UNIT_NONE) {
            density =
                    named == BaselineTIFFTagSet.RESOLUTION_UNIT_INCH
                            ? Density.perInch(x.getAsDouble(0), y.getAsDouble(0))
                            : Density.of(100 * x.getAsDouble(0), 100 * y.getAsDouble(0));
        }
    }

    /** Returns the chunks that belong behind a PNG file's header. */
    byte[] asPng() {
        final ByteArrayOutputStream out = new ByteArrayOutputStream();
        colors.forEach(
                (type, data) -> {
                    if (profile == null || !type.equals("sRGB")) { // one of them, says PNG
                        writeChunk(out, type, data);
                    }
                });
        if (profile != null) {
            final ByteArrayOutputStream data = new ByteArrayOutputStream();
            data.writeBytes(ascii("ICC profile\0\0"));
            try (DeflaterOutputStream zip = new DeflaterOutputStream(data)) {
                zip.write(profile);
            } catch (IOException e) {
                throw new UncheckedIOException(e); // memory has no such faults
            }
            writeChunk(out, "iCCP", data.toByteArray());
        }
        if (density != null) {
            final ByteBuffer data = ByteBuffer.allocate(9).putInt(density.x).putInt(density.y);
            writeChunk(out, "pHYs", data.put((byte) 1).array());
        }
        if (exif != null) {
            writeChunk(out, "eXIf", exif.upright());
        }
        return out.toByteArray();
    }

    /** Returns a JPEG file's start up to the end of the JFIF segment, and what belongs behind. */
    byte[] asJpeg(byte[] start) {
        final ByteArrayOutputStream out = new ByteArrayOutputStream();
        final ByteBuffer jfif = ByteBuffer.wrap(start);
        if (density != null) {
            final int x = Density.perInch(density.x);
            final int y = Density.perInch(density.y);
            if (x > 0 && x <= 0xFFFF && y > 0 && y <= 0xFFFF) {
                jfif.put(13, (byte) 1).putShort(14, (short) x).putShort(16, (short) y);
            }
        }
        out.writeBytes(start);
        if (exif != null) {
            final byte[] block = exif.upright();
            if (JPEG_EXIF.length + block.length <= JPEG_SEGMENT_BYTES) {
                writeSegment(out, 0xE1, JPEG_EXIF, block);
            }
        }
        if (profile != null) {
            final int room = JPEG_SEGMENT_BYTES - JPEG_PROFILE.length - 2;
            final int parts = (profile.length + room - 1) / room;
            for (int part = 0; part < parts && parts <= 255; ++part) {
                final byte[] head = Arrays.copyOf(JPEG_PROFILE, JPEG_PROFILE.length + 2);
                head[JPEG_PROFILE.length] = (byte) (part + 1);
                head[JPEG_PROFILE.length + 1] = (byte) parts;
                final int end = Math.min((part + 1) * room, profile.length);
                writeSegment(out, 0xE2, head, Arrays.copyOfRange(profile, part * room, end));
            }
        }
        return out.toByteArray();
    }

    private static void writeChunk(ByteArrayOutputStream out, String type, byte[] data) {
        final ByteBuffer chunk = ByteBuffer.allocate(12 + data.length).putInt(data.length);
        chunk.put(ascii(type)).put(data);
        final CRC32 crc = new CRC32();
        crc.update(chunk.array(), 4, 4 + data.length);
        out.writeBytes(chunk.putInt((int) crc.getValue()).array());
    }

    private static void writeSegment(
            ByteArrayOutputStream out, int marker, byte[] head, byte[] data) {
        final ByteBuffer start = ByteBuffer.allocate(4).put((byte) 0xFF).put((byte) marker);
        out.writeBytes(start.putShort((short) (2 + head.length + data.length)).array());
        out.writeBytes(head);
        out.writeBytes(data);
    }

    /** Returns the profile if it is one of RGB samples, as pictures are written, or null. */
    private static byte[] rgbProfile(byte[] bytes) {
        final boolean valid =
                bytes.length >= 132 // header and count of tags
                        && new String(bytes, 36, 4, StandardCharsets.ISO_8859_1).equals("acsp")
                        && new String(bytes, 16, 4, StandardCharsets.ISO_8859_1).equals("RGB ");
        return valid ? bytes : null;
    }

    private static byte[] bytes(ImageInputStream in, int length) throws IOException {
        final byte[] bytes = new byte[length];
        in.readFully(bytes);
        return bytes;
    }

    private static int indexOfZero(byte[] bytes) {
        int i = 0;
        while (bytes[i] != 0) {
            ++i;
        }
        return i;
    }

    private static boolean startsWith(byte[] bytes, byte[] start) {
        return bytes.length >= start.length
                && Arrays.equals(bytes, 0, start.length, start, 0, start.length);
    }

    private static byte[] ascii(String text) {
        return text.getBytes(StandardCharsets.US_ASCII);
    }
}
