package zoren.cli;

import android.graphics.Bitmap;
import java.awt.Rectangle;
import java.awt.color.ColorSpace;
import java.awt.image.BufferedImage;
import java.awt.image.SampleModel;
import java.io.FilterOutputStream;
import java.io.IOException;
import java.io.OutputStream;
import java.util.ArrayList;
import java.util.List;
import javax.imageio.IIOImage;
import javax.imageio.ImageIO;
import javax.imageio.ImageReadParam;
import javax.imageio.ImageReader;
import javax.imageio.ImageTypeSpecifier;
import javax.imageio.ImageWriteParam;
import javax.imageio.ImageWriter;
import javax.imageio.stream.ImageInputStream;
import javax.imageio.stream.ImageOutputStream;
import javax.imageio.stream.MemoryCacheImageOutputStream;

/** Moves pictures between files and bitmaps, sample by sample and some rows at a time. */
final class Pictures {
    private static final int STRIP_PIXELS = 1 << 18; // of formats whose decoders find their way
    private static final int[] RGB_BANDS = {0, 1, 2};
    private static final int PNG_HEADER_BYTES = 33; // signature and IHDR
    private static final int JPEG_HEADER_BYTES = 20; // start and JFIF segment
    // What the decoders warn of and decode right all the same. With any other warning samples may
    // be lost: bytes that do not fit the code or are left over, an early end, a chunk passed over.
    private static final List<String> HARMLESS_WARNINGS =
            List.of(
                    "unknown JFIF revision number",
                    "Embedded color profile is invalid", // no profile is applied
                    "in JFIF JPEG thumbnail",
                    "Invalid SOS parameters for sequential JPEG", // such a scan needs none
                    "has more entries than prior PLTE chunk",
                    "contains too many entries for bit depth",
                    "gray alpha image cannot have a PLTE chunk",
                    "No embedded ICC color profile", // of CMYK samples
                    "RGBS images may not have a tRNS chunk"); // they have alpha itself

    private Pictures() {}

    /**
     * Returns the picture as an ARGB_8888 bitmap, upright; of several, the first. The colour
     * samples come as the file has them, with alpha not multiplied in; 16-bit samples are brought
     * to 8 bits.
     */
    static Picture read(Source source, PixelBudget budget) throws Failure {
        ImageReader reader = null;
        int taken = 0;
        Picture picture = null;
        try (ImageInputStream in = source.open()) {
            final List<String> losses = new ArrayList<>();
            reader = open(source.format, source.format == Format.WEBP, in, losses);
            taken = budget.take(source, reader.getWidth(0), reader.getHeight(0));
            final Notes notes = Notes.of(source, reader);
            Format.Way way = source.format.way;
            final int space =
                    reader.getImageTypes(0).next().getColorModel().getColorSpace().getType();
            if (space != ColorSpace.TYPE_RGB && space != ColorSpace.TYPE_GRAY) { // CMYK, perhaps
                reader.dispose();
                in.seek(0);
                losses.clear();
                // The plug-in makes it RGB, by the profile if there is one.
                reader = open(source.format, true, in, losses);
                way = Format.Way.WHOLE;
                notes.dropProfile();
            }
            // A part of a TIFF file's own strips costs as much as a whole one.
            final int strip = Math.min(reader.getTileHeight(0), reader.getHeight(0));
            final int unit = source.format == Format.TIFF ? Math.max(1, strip) : 1;
            final Bitmap bitmap = decode(reader, way, unit, notes.orientation());
            if (!losses.isEmpty()) {
                throw new Failure(source.name + ": is not a whole picture: " + losses.get(0));
            }
            picture = new Picture(bitmap, source.format, notes, budget);
            return picture;
        } catch (IOException | RuntimeException e) { // decoders throw both on broken data
            throw new Failure(source.name + ": is not a whole picture: " + e.getMessage());
        } catch (OutOfMemoryError e) {
            throw new Failure(source.name + ": is too large for the memory there is");
        } finally {
            if (reader != null) {
                reader.dispose();
            }
            if (picture == null && taken > 0) {
                budget.giveBack(taken);
            }
        }
    }

    /** Returns a decoder that lists what it loses from its first look at the header on. */
    private static ImageReader open(
            Format format, boolean plugIn, ImageInputStream in, List<String> losses) {
        final ImageReader reader = format.reader(plugIn);
        reader.addIIOReadWarningListener(
                (from, warning) -> {
                    if (HARMLESS_WARNINGS.stream().noneMatch(warning::contains)) {
                        losses.add(warning);
                    }
                });
        // A TIFF file's parts may lie anywhere in it, and its notes are in the reader's metadata.
        final boolean forward = format != Format.TIFF;
        reader.setInput(in, forward, forward);
        return reader;
    }

    private static Bitmap decode(ImageReader reader, Format.Way way, int unit, int orientation)
            throws IOException {
        final int width = reader.getWidth(0);
        final int height = reader.getHeight(0);
        final Upright upright = new Upright(width, height, orientation);
        final ImageReadParam param = reader.getDefaultReadParam();
        if (way == Format.Way.BY_STRIPS) {
            final int rows = unit * Math.max(1, STRIP_PIXELS / width / unit);
            for (int y = 0; y < height; y += rows) {
                param.setSourceRegion(new Rectangle(0, y, width, Math.min(rows, height - y)));
                put(reader.read(0, param), y, upright);
            }
        } else if (way == Format.Way.WHOLE) {
            put(reader.read(0, param), 0, upright);
        } else {
            final ImageTypeSpecifier type = reader.getImageTypes(0).next();
            final SampleModel samples = type.getSampleModel(width, height);
            if (samples.getNumBands() == RGB_BANDS.length) {
                param.setSourceBands(RGB_BANDS); // or JPEG's would go through the profile to sRGB
            }
            param.setDestination(upright.asImage(type.getColorModel(), samples));
            reader.read(0, param);
        }
        return upright.bitmap();
    }

    private static void put(BufferedImage image, int y, Upright upright) {
        upright.put(0, y, image.getColorModel(), image.getRaster());
    }

    /** Writes the picture as one of the given format, PNG or JPEG, which drops alpha. */
    static void write(Bitmap bitmap, Notes notes, Format format, int quality, OutputStream out)
            throws IOException {
        final ImageWriter writer = ImageIO.getImageWritersByFormatName(format.name()).next();
        final boolean jpeg = format == Format.JPEG;
        final OutputStream headed = new HeadedStream(out, jpeg, notes);
        try (ImageOutputStream imageOut = new MemoryCacheImageOutputStream(headed)) {
            final ImageWriteParam param = writer.getDefaultWriteParam();
            if (jpeg) {
                param.setCompressionMode(ImageWriteParam.MODE_EXPLICIT);
                param.setCompressionQuality(quality / 100f);
            }
            writer.setOutput(imageOut);
            writer.write(null, new IIOImage(BitmapImage.of(bitmap, !jpeg), null, null), param);
        } finally {
            writer.dispose();
        }
    }

    /** Lays the notes behind the header that every encoder begins with. */
    private static final class HeadedStream extends FilterOutputStream {
        private final boolean jpeg;
        private final Notes notes;
        private final byte[] header;
        private int filled;

        HeadedStream(OutputStream out, boolean jpeg, Notes notes) {
            super(out);
            this.jpeg = jpeg;
            this.notes = notes;
            header = new byte[jpeg ? JPEG_HEADER_BYTES : PNG_HEADER_BYTES];
        }

        @Override
        public void write(int value) throws IOException {
            write(new byte[] {(byte) value}, 0, 1);
        }

        @Override
        public void write(byte[] bytes, int offset, int length) throws IOException {
            final int missing = Math.min(header.length - filled, length);
            System.arraycopy(bytes, offset, header, filled, missing);
            filled += missing;
            if (missing > 0 && filled == header.length) {
                out.write(jpeg ? notes.asJpeg(header) : header);
                out.write(jpeg ? new byte[0] : notes.asPng());
            }
            out.write(bytes, offset + missing, length - missing);
        }
    }
}
