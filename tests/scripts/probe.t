# SPDX-License-Identifier: Apache-2.0
# What mray shows of an output that is probed: each output of each operator in each of its types, and pixels of
# which the value can be read off.
use strict;
use warnings;
use Compress::Zlib 'uncompress';
use File::Temp 'tempdir';
use FindBin;
use lib $FindBin::Bin;
use ScriptTest qw(put get run);
use Test::More;

my $batch = $ENV{TAVRIN_BATCH};
plan skip_all => 'TAVRIN_BATCH does not name tavrin-batch' if !defined $batch;
my $dir = tempdir(CLEANUP => 1);
delete @ENV{grep { /^TAVRN_/ } keys %ENV};
$ENV{SOURCE_DATE_EPOCH} = 1763461491;

sub batch { run($batch, @_) }

sub document {
	my ($name, @boxes) = @_;
	return put("$dir/$name.tvn", "tavrn-version 1\ntavrn-renderer mray\nopdesk {\n" . join('', @boxes) . "}\n");
}

# ---------------------------------------------------------------- every output

my ($status, $out, $err) = batch('--list-operators');
my @operators = grep { get($_->[2]) !~ /^(?:\s+|#[^\n]*\n)*tavrn-version\b/ } map { [split /\t/] } split /\n/, $out;
($status, $out, $err) = batch(map { ('--describe', $_->[0]) } @operators);
is($err, '', 'all operators are described');

# [operator, [name, casts...]...]: the outputs in their order.
my (@described, $button);
my %vinputs;    # by operator, as a document has them: those that it does not name are none
for my $line (split /\n/, $out) {
	if ($line =~ /^(input|vinput|output) (\w+)$/) {
		my ($kind, $shown) = ($1, $2);
		$button = $kind eq 'output' ? [$shown] : undef;
		push @{ $described[-1] }, $button if $button;
		$vinputs{ $described[-1][0] } .= "opbutton.vinput " . ($shown =~ s/\d+\z//r)
			. " $shown { x { currentcast rgba wwms { } } }\n" if $kind eq 'vinput';
	} elsif ($line =~ /^\S/) {
		push @described, [$line];
		$button = undef;
	} elsif ($button && $line =~ /^    (float|xyz|rgba?|string|generic(?::\w+)?)(?::\s.*?)?$/) {
		push @$button, $1;
	}
}
is(scalar @described, scalar @operators, 'each of them');

my %network = (float => 'Value', rgb => 'Colour', xyz => 'Direction', rgba => 'Cover', 'generic:vec2' => 'Pair');
my (@boxes, @words, @wanted, %shown);
my $wid = 0;
for my $operator (@described) {
	my ($name, @outputs) = @$operator;
	my $most = 0;
	for my $output (@outputs) { $most = @$output - 1 if @$output - 1 > $most }
	for my $cast (1 .. $most) {
		$wid++;
		my $buttons = join '', map { "opbutton.output $_->[0] $_->[0] { x { currentcast "
			. ($_->[$cast] // $_->[1]) . " wwms { } } }\n" } @outputs;
		push @boxes, "opbox { filename $name wid $wid\n" . ($vinputs{$name} // '') . "$buttons}\n";
		for my $output (grep { $_->[$cast] } @outputs) {
			push @words, '--probe', "${name}_$wid.$output->[0]", '--view', 'source';
			push @wanted, [$name, $output->[0], $output->[$cast]];
			$shown{ $output->[$cast] }++;
		}
	}
}
cmp_ok(scalar @wanted, '>', 40, 'there are outputs');
is(join(' ', sort keys %shown), join(' ', sort keys %network), 'of each type that there is a network for');

my $all = document('all', @boxes);
($status, $out, $err) = batch(@words, $all);
is($status, 0, 'each can be shown, and what is generated compiles') or diag $err;
is($err, '', 'without a message');
my @shaders = split /^(?=#version )/m, $out;
is(scalar @shaders, scalar @wanted, 'a shader for each');
for my $i (0 .. $#wanted) {
	my ($name, $output, $type) = @{ $wanted[$i] };
	like($shaders[$i], qr/mrInspect_$network{$type}\(/, "$name $output as $type is shown as that");
	my @stands = $shaders[$i] =~ m{^ +// (\w+)_\d+$}mg;
	is(scalar(grep { $_ eq 'Surface' } @stands), 1, "$name $output has one end");
}

# ---------------------------------------------------------------- pixels

# The middle pixel of a picture without interlacing: red, green and blue.
sub middle {
	my ($png) = @_;
	my ($width, $height, $depth, $kind) = unpack 'x16 N2 C2', $png;
	return "no such picture: $depth $kind" if $depth != 8 || ($kind != 2 && $kind != 6);
	my ($at, $packed) = (8, '');
	while ($at < length $png) {
		my ($length, $chunk) = unpack 'N a4', substr $png, $at, 8;
		$packed .= substr $png, $at + 8, $length if $chunk eq 'IDAT';
		$at += $length + 12;
	}
	my @bytes = unpack 'C*', uncompress($packed);
	my $step = $kind == 2 ? 3 : 4;
	my @above = (0) x ($width * $step);
	my @row;
	for my $y (0 .. int($height / 2)) {
		my $filter = shift @bytes;
		@row = splice @bytes, 0, $width * $step;
		for my $x (0 .. $#row) {
			my $left = $x >= $step ? $row[$x - $step] : 0;
			my $corner = $x >= $step ? $above[$x - $step] : 0;
			my $up = $above[$x];
			my ($p, $q, $r) = (abs($up - $corner), abs($left - $corner), abs($left + $up - 2 * $corner));
			my $paeth = $p <= $q && $p <= $r ? $left : $q <= $r ? $up : $corner;
			$row[$x] = ($row[$x] + (0, $left, $up, int(($left + $up) / 2), $paeth)[$filter]) % 256;
		}
		@above = @row;
	}
	my $x = int($width / 2) * $step;
	return [@row[$x .. $x + 2]];
}

sub shown {
	my ($name, $box, $output) = @_;
	my $path = document($name, $box);
	my ($status, undef, $err) = batch('--quiet', '--set', 'MRAY_SIZE=33,33', '--set', 'MRAY_SAMPLES=1', '--set',
		'MRAY_OBJECT=sphere', '--probe', $output, '--render', '--picture', "$dir/$name.png", $path);
	is($status, 0, "$name renders") or diag $err;
	return middle(get("$dir/$name.png") // '');
}

sub number {
	my ($value) = @_;
	return "opbox { filename Number wid 1 opbutton.input number number { x { currentcast float wwms { float "
		. "$value -9 9 0 } } } }\n";
}
sub tint {
	my ($colour) = @_;
	return "opbox { filename Tint wid 1 opbutton.input colour colour { x { currentcast rgb wwms { rgb $colour } } } }\n";
}

sub near {
	my ($got, $wanted, $what) = @_;
	my $off = grep { abs($got->[$_] - $wanted->[$_]) > 2 } 0 .. 2;
	is($off, 0, "$what: @$wanted") or diag "got @$got";
}

near(shown("grey$_", number($_ / 4), 'Number_1.result'), [(int($_ / 4 * 255 + 0.5)) x 3], "the value $_ / 4") for 0 .. 4;
my $below = shown('below', number(-1), 'Number_1.result');
ok($below->[2] > $below->[0] + 60, "below 0 is blue: @$below");
my $above = shown('above', number(2), 'Number_1.result');
ok($above->[0] > $above->[2] + 60, "above 1 is orange: @$above");
near(shown('colour', tint('1 0.2140 0'), 'Tint_1.result'), [255, 127, 0], 'a colour as a screen shows it');
my $math = "opbox { filename Math wid 1\n"
	. "opbutton.input left left { x { currentcast xyz wwms { xyz 0.5 -0.5 1 -10 10 0 } } }\n"
	. "opbutton.input right right { x { currentcast xyz wwms { xyz -9 -9 -9 -10 10 0 } } }\n"
	. "opbutton.input operation operation { x { currentcast string wwms { string \"Maximum\" } } }\n"
	. "opbutton.output result result { x { currentcast xyz wwms { } } } }\n";
near(shown('direction', $math, 'Math_1.result'), [191, 64, 255], 'a direction of which -1 is black');
my $coverage = "opbox { filename Coverage wid 1\n"
	. "opbutton.input colour colour { x { currentcast rgb wwms { rgb 1 0 0 } } } }\n";
near(shown('coverage', $coverage, 'Coverage_1.layer'), [255, 0, 0], 'a colour that covers all');
my $thin = shown('thin', $coverage =~ s/ \}\n\z/ opbutton.input mask mask { x { currentcast float wwms { float 0 0 1 0 } } } }\n/r,
	'Coverage_1.layer');
ok($thin->[0] == $thin->[1] && $thin->[1] == $thin->[2] && $thin->[0] > 90 && $thin->[0] < 170,
	"one that covers nothing is the grey of a square: @$thin");

done_testing;
