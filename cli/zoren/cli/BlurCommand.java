package zoren.cli;

import android.graphics.Bitmap;
import java.io.IOException;
import java.io.PrintWriter;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HashSet;
import java.util.List;
import java.util.Set;
import java.util.concurrent.Callable;
import picocli.CommandLine.Command;
import picocli.CommandLine.ITypeConverter;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.Parameters;
import picocli.CommandLine.Spec;
import picocli.CommandLine.TypeConversionException;
import zoren.util.BlurUtil;

@Command(
        name = "blur",
        header = "Blur pictures and lay a colour over them.",
        customSynopsis = {
            "zoren blur -r R [OPTION...] INPUT OUTPUT",
            "zoren blur -r R [OPTION...] INPUT... FOLDER",
            "zoren blur -r R [OPTION...] -o OUTPUT INPUT..."
        },
        description = {
            "",
            "INPUT is a PNG, JPEG, WebP, GIF, BMP or TIFF picture, whatever its name, or a folder"
                    + " of them; of several frames the first is read. OUTPUT is a PNG or JPEG file."
                    + " Of several inputs, or a folder, it is the folder that takes the results, made"
                    + " when missing; names stay, but end in .png or .jpg. - is standard input or"
                    + " output.",
            "",
            "The result is opaque. A picture narrower or lower than 2 pixels stays as it is. It"
                    + " keeps an RGB profile, the density and EXIF, turned upright and without the"
                    + " thumbnail; between PNG files gAMA, cHRM and sRGB too. A file that is"
                    + " replaced keeps its owner and permissions; a symbolic link of another user"
                    + " is not followed.",
            ""
        },
        footer = {
            "",
            "Examples:",
            "  zoren blur photo.jpg soft.png --radius 7.3",
            "  zoren blur photo.jpg warm.jpg --radius 25 --color 40FF8800",
            "  zoren blur -r 10 *.jpg more/ soft/",
            "  curl -s https://example.org/a.webp | zoren blur -r 4 -f jpeg - - >a.jpg"
        })
final class BlurCommand implements Callable<Integer> {
    private static final float RADIUS_LIMIT = 23170.75f; // from here on the library refuses
    private static final float LEAST_RADIUS = 0.25f; // below, the library does not blur
    private static final int LEAST_SIDE = 2;
    private static final Path STANDARD = Path.of(Source.STANDARD);

    @Spec private CommandSpec spec;
    @Mixin private WorkOptions work;

    @Parameters(
            arity = "1..*",
            paramLabel = "INPUT... OUTPUT",
            description = "Pictures or folders, and what is written.")
    private List<Path> words;

    @Option(
            names = {"-o", "--output"},
            paramLabel = "OUTPUT",
            description = "What is written; all other words are inputs then.")
    private Path output;

    @Option(
            names = {"-r", "--radius"},
            required = true,
            paramLabel = "R",
            description =
                    "The Gaussian's standard deviation in pixels, from 0 to below 23170.75. Below"
                            + " 0.25 nothing is blurred; the colour is laid over all the same.")
    private float radius;

    @Option(
            names = {"-c", "--color"},
            paramLabel = "AARRGGBB",
            converter = ColorConverter.class,
            description =
                    "The colour to lay over the blurred picture: alpha, red, green, blue, two"
                            + " hexadecimal digits each. Alpha 00, the default, lays none; FF"
                            + " covers the picture.")
    private int color;

    @Option(
            names = {"-f", "--format"},
            paramLabel = "KIND",
            converter = FormatConverter.class,
            description =
                    "Write png or jpeg. By default OUTPUT's name tells, in a folder the picture's"
                            + " own, and for what else is a picture png.")
    private Format format;

    @Option(
            names = {"-q", "--quality"},
            defaultValue = "95",
            paramLabel = "1..100",
            converter = Numbers.Quality.class,
            description = "The quality of JPEG, ${DEFAULT-VALUE} by default.")
    private int quality;

    @Option(names = "--strip", description = "Keep no profile, no density and no EXIF.")
    private boolean strip;

    private PixelBudget budget;

    @Override
    public Integer call() throws Exception {
        if (!(radius >= 0 && radius < RADIUS_LIMIT)) {
            throw usage("--radius must be at least 0 and below " + RADIUS_LIMIT);
        }
        final List<Path> inputs = new ArrayList<>(words);
        if (output == null) {
            output = inputs.remove(inputs.size() - 1);
        }
        if (inputs.isEmpty()) {
            throw usage("OUTPUT is missing");
        }
        if (output.equals(Path.of("/dev/stdout"))) {
            output = STANDARD;
        }
        budget = new PixelBudget(work.maxPixels);
        return inputs.size() > 1 || Files.isDirectory(inputs.get(0)) || Files.isDirectory(output)
                ? blurInto(output, inputs)
                : blurOne(inputs.get(0));
    }

    private int blurOne(Path input) throws Failure {
        final Format named = format == null ? Format.ofName(output) : format;
        if (named == null && !output.equals(STANDARD)) {
            throw usage(
                    "OUTPUT must end in .png, .jpg or .jpeg, or --format tell: "
                            + Names.word(output));
        }
        final Source source = Source.of(input);
        final String remark = blur(source, output, named == null ? kindFor(source) : named);
        if (remark != null) {
            Zoren.report(spec.commandLine().getErr(), remark);
        }
        return 0;
    }

    private int blurInto(Path folder, List<Path> paths) throws Exception {
        if (folder.equals(STANDARD)) {
            throw usage("standard output takes one picture");
        }
        if (paths.contains(STANDARD)) {
            throw usage("standard input has no name for a file in a folder");
        }
        if (Files.exists(folder) && !Files.isDirectory(folder)) {
            throw new Failure(folder, "is a file, but several pictures need a folder");
        }
        final Inputs inputs = Inputs.of(paths, work.recursive, folder);
        final Set<Object> read = inputs.fileKeys();
        if (!read.isEmpty()) {
            WholeFile.makeFolder(folder);
        }
        for (final Path path : paths) {
            if (Files.isDirectory(path)
                    && Files.exists(folder)
                    && Files.isSameFile(path, folder)) {
                throw new Failure(folder, "is the folder that is read; name another one");
            }
        }

        final Set<Path> outputs = new HashSet<>();
        final List<Callable<String[]>> tasks = new ArrayList<>();
        for (final Inputs.Input input : inputs.list) {
            final Path to = input.source == null ? null : outputOf(input, folder);
            final boolean again = to != null && !outputs.add(to);
            tasks.add(() -> blurListed(input, to, again, read));
        }
        final PrintWriter err = spec.commandLine().getErr();
        final ProgressBar progress = new ProgressBar(err, tasks.size());
        final int[] failed = new int[1];
        progress.show();
        Workers.run(
                work.jobs,
                tasks,
                result -> {
                    for (final String message : result) {
                        if (message != null) {
                            progress.clear();
                            Zoren.report(err, message);
                        }
                    }
                    failed[0] += result[0] == null ? 0 : 1;
                    progress.advance();
                });
        progress.clear();
        Zoren.report(err, inputs.summary("blurred", failed[0]));
        return failed[0] == 0 ? 0 : 1;
    }

    /** Returns where a picture of several goes: its name, with the ending of what is written. */
    private Path outputOf(Inputs.Input input, Path folder) {
        final Format named = Format.ofName(input.name);
        final Format byDefault = named != null ? named : kindFor(input.source);
        final Format wanted = format != null ? format : byDefault;
        return folder.resolve(wanted.rename(input.name));
    }

    /** Returns the failure, or null, and the remark, or null. */
    private String[] blurListed(Inputs.Input input, Path to, boolean again, Set<Object> read) {
        try {
            if (input.failure != null) {
                throw input.failure;
            }
            if (again) {
                throw new Failure(input.path, "another input was written to " + Names.shown(to));
            }
            if (Files.exists(to) && read.contains(Source.fileKey(to))) {
                throw new Failure(to, "is a picture that is read; name another folder");
            }
            WholeFile.makeFolder(to.getParent());
            return new String[] {null, blur(input.source, to, Format.ofName(to))};
        } catch (IOException e) {
            return new String[] {"cannot use " + new Failure(to, e).getMessage(), null};
        } catch (Failure e) {
            return new String[] {e.getMessage(), null};
        }
    }

    private static Format kindFor(Source source) {
        return source.format == Format.JPEG ? Format.JPEG : Format.PNG;
    }

    /** Blurs one picture and returns a remark on how it was written, or null. */
    private String blur(Source source, Path to, Format as) throws Failure {
        try (Picture picture = Pictures.read(source, budget)) {
            final Bitmap bitmap = picture.bitmap;
            // A refused request is silent. But a blur makes every pixel opaque without looking at
            // its alpha, so a pixel made transparent before, and transparent still, tells of it.
            final boolean blurs =
                    radius >= LEAST_RADIUS
                            && bitmap.getWidth() >= LEAST_SIDE
                            && bitmap.getHeight() >= LEAST_SIDE;
            if (blurs) {
                bitmap.setPixel(0, 0, bitmap.getPixel(0, 0) & 0xFFFFFF);
            }
            BlurUtil.getBlurEffect(bitmap, radius, color);
            if (blurs && bitmap.getPixel(0, 0) >>> 24 == 0) {
                throw new Failure(
                        source.name + ": there is not the memory to blur by radius " + radius);
            }
            final Notes notes = strip ? Notes.NONE : picture.notes;
            if (!to.equals(STANDARD)) {
                return WholeFile.write(
                        to,
                        WholeFile.SHARED,
                        out -> Pictures.write(bitmap, notes, as, quality, out));
            }
            Pictures.write(bitmap, notes, as, quality, System.out);
            if (System.out.checkError()) {
                throw new Failure("standard output cannot be written");
            }
            return null;
        } catch (IOException e) {
            throw new Failure("cannot write " + new Failure(to, e).getMessage());
        } catch (OutOfMemoryError e) {
            throw new Failure(source.name + ": is too large for the memory there is");
        }
    }

    private ParameterException usage(String message) {
        return new ParameterException(spec.commandLine(), message);
    }

    private static final class ColorConverter implements ITypeConverter<Integer> {
        @Override
        public Integer convert(String text) {
            final String digits = text.replaceFirst("^(#|0[xX])", "");
            if (digits.matches("[0-9A-Fa-f]{6}")) {
                throw new TypeConversionException(
                        "'" + text + "' has no alpha: write 40" + digits + " for a tint, FF"
                                + digits + " to cover the picture");
            }
            if (!digits.matches("[0-9A-Fa-f]{8}")) {
                throw new TypeConversionException(
                        "'" + text + "' is not AARRGGBB, eight hexadecimal digits, alpha first");
            }
            return Integer.parseUnsignedInt(digits, 16);
        }
    }

    private static final class FormatConverter implements ITypeConverter<Format> {
        @Override
        public Format convert(String text) {
            switch (text) {
                case "png":
                    return Format.PNG;
                case "jpeg":
                case "jpg":
                    return Format.JPEG;
                default:
                    throw new TypeConversionException("'" + text + "' is neither png nor jpeg");
            }
        }
    }
}
